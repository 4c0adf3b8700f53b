// client/store/time_calls.cpp: the store's time calls, and the text forms of times and numbers.
// A time reads "2007-03-05 14:00:00.00", in GMT; "2007-03-05" without a time of day, "14:00:00.00"
// without a date.  The minimum time, which stands for "never", has an empty text.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <tuple>

#include "client/store/civil_date.h"
#include "client/store/clock.h"
#include "client/store/time_scanner.h"
#include "client/store/timedate.h"
#include "client/store/value_text.h"
#include "platform/store.h"

namespace {

using namespace pavex;

constexpr DWORD kTicksADay = 8640000;
constexpr TIMEDATE kMinimumTime{{0, 0}};
constexpr TIMEDATE kMaximumTime{{kTicksADay - 1, kDayMask}};
constexpr TIMEDATE kWildcardTime{{kNoTimeOfDay, kNoDate}};

// The parts in the order in which they weigh.  What is missing comes before what is there.
struct Rank {
    int64_t day, ticks;
    auto Parts() const { return std::tie(day, ticks); }
};

Rank RankOf(const TIMEDATE& time)
{
    return {time.Innards[1] == kNoDate ? -1 : int64_t{time.Innards[1] & kDayMask},
            time.Innards[0] == kNoTimeOfDay ? -1 : int64_t{time.Innards[0]}};
}

bool IsTime(const TIMEDATE& time)
{
    const bool hasTime = time.Innards[0] != kNoTimeOfDay;
    return (hasTime || time.Innards[1] != kNoDate) && (!hasTime || time.Innards[0] < kTicksADay);
}

std::string TextOfTime(const TIMEDATE& time)
{
    if (RankOf(time).Parts() == RankOf(kMinimumTime).Parts())
        return {};
    char date[32] = "";
    char clock[32] = "";
    if (time.Innards[1] != kNoDate) {
        const CivilDate civil = CivilFromDay(time.Innards[1] & kDayMask);
        std::snprintf(date, sizeof date, "%0*d-%02d-%02d", civil.year < 0 ? 5 : 4, civil.year, civil.month, civil.day);
    }
    if (const DWORD ticks = time.Innards[0]; ticks != kNoTimeOfDay)
        std::snprintf(clock, sizeof clock, "%02u:%02u:%02u.%02u", ticks / 360000, ticks / 6000 % 60, ticks / 100 % 60,
                      ticks % 100);
    return std::string(date) + (*date != 0 && *clock != 0 ? " " : "") + clock;
}

// text[size], terminated; 591 when it does not fit.
STATUS HandOut(const std::string& value, char* text, WORD size, WORD* length)
{
    if (length != nullptr)
        *length = 0;
    if (text == nullptr || value.size() >= size)
        return kStatusBadText;
    std::memcpy(text, value.c_str(), value.size() + 1);
    if (length != nullptr)
        *length = static_cast<WORD>(value.size());
    return kStatusOk;
}

// A date, a time of day, or both with blanks between; stops before what is neither.
bool ScanTime(TimeScanner& scanner, TIMEDATE* time)
{
    const size_t start = scanner.Position();
    *time = kWildcardTime;
    if (!scanner.Date(&time->Innards[1])) {
        scanner.MoveTo(start);
        time->Innards[1] = kNoDate;
        return scanner.TimeOfDay(&time->Innards[0]);
    }
    const size_t afterDate = scanner.Position();
    while (scanner.Skip(' ')) {
    }
    if (scanner.Position() == afterDate || !scanner.TimeOfDay(&time->Innards[0])) {
        scanner.MoveTo(afterDate);
        time->Innards[0] = kNoTimeOfDay;
    }
    return true;
}

}  // namespace

void OSCurrentTIMEDATE(TIMEDATE* now)
{
    const uint64_t hundredths = CurrentClock().NowHundredths();
    *now = TimeFromUnix(static_cast<int64_t>(hundredths / 100), static_cast<int>(hundredths % 100));
}

void TimeConstant(WORD type, TIMEDATE* time)
{
    *time = type == 0 ? kMinimumTime : type == 1 ? kMaximumTime : kWildcardTime;
}

int TimeDateCollate(const TIMEDATE* a, const TIMEDATE* b)
{
    const Rank first = RankOf(*a);
    const Rank second = RankOf(*b);
    if (first.Parts() < second.Parts())
        return -1;
    return second.Parts() < first.Parts() ? 1 : 0;
}

DWORD TimeExtractJulianDate(const TIMEDATE* time)
{
    return time->Innards[1] == kNoDate ? kNoDate : time->Innards[1] & kDayMask;
}

DWORD TimeExtractTicks(const TIMEDATE* time)
{
    return time->Innards[0];
}

DWORD TimeExtractDate(const TIMEDATE* time)
{
    return time->Innards[1];
}

TIMEDATE TimeConstruct(DWORD date, DWORD ticks)
{
    return {{ticks, date}};
}

bool TimeGMToLocalZone(TIME* time)
{
    if (!IsTime(time->GM) || time->GM.Innards[1] == kNoDate)
        return true;
    int64_t day = time->GM.Innards[1] & kDayMask;
    const bool hasTime = time->GM.Innards[0] != kNoTimeOfDay;
    int64_t ticks = hasTime ? time->GM.Innards[0] : 0;
    if (hasTime) {  // a day without a time of day is the same day everywhere
        ticks += ((time->dst != 0 ? 1 : 0) - int64_t{time->zone}) * 360000 + day * int64_t{kTicksADay};
        if (ticks < 0)
            return true;
        day = ticks / kTicksADay;
        ticks %= kTicksADay;
    }
    const CivilDate date = CivilFromDay(static_cast<uint32_t>(day));
    time->year = date.year;
    time->month = date.month;
    time->day = date.day;
    time->weekday = static_cast<int>((day + 1) % 7) + 1;  // day 0 was a Monday
    time->hour = hasTime ? static_cast<int>(ticks / 360000) : -1;
    time->minute = hasTime ? static_cast<int>(ticks / 6000 % 60) : -1;
    time->second = hasTime ? static_cast<int>(ticks / 100 % 60) : -1;
    time->hundredth = hasTime ? static_cast<int>(ticks % 100) : -1;
    return false;
}

STATUS ConvertTIMEDATEToText(const void*, const void*, const TIMEDATE* time, char* text, WORD size, WORD* length)
{
    if (!IsTime(*time)) {
        HandOut({}, text, size, length);
        return kStatusBadText;
    }
    return HandOut(TextOfTime(*time), text, size, length);
}

STATUS ConvertTextToTIMEDATE(const void*, const void*, char** text, WORD maxLength, TIMEDATE* time)
{
    TimeScanner scanner({*text, strnlen(*text, maxLength)});
    while (scanner.Skip(' ')) {
    }
    TIMEDATE read;
    if (!ScanTime(scanner, &read))
        return kStatusBadText;
    *time = read;
    *text += scanner.Position();
    return kStatusOk;
}

STATUS ConvertFLOATToText(const void*, const void*, const double* number, char* text, WORD size, WORD* length)
{
    const auto value = TextOfNumber(*number);
    if (!value) {
        HandOut({}, text, size, length);
        return kStatusBadText;
    }
    return HandOut(*value, text, size, length);
}
