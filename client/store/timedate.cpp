// client/store/timedate.cpp: the store's time stamp: arithmetic, Unix times, ISO and hexadecimal forms.
#include "client/store/timedate.h"

#include <charconv>
#include <cstdio>

#include "client/store/civil_date.h"
#include "client/store/time_scanner.h"

namespace pavex {

namespace {

constexpr uint64_t kTicksADay = 8640000;

std::string Format(const char* format, auto... arguments)
{
    char text[64];
    const int length = std::snprintf(text, sizeof text, format, arguments...);
    return {text, static_cast<size_t>(length)};
}

// The offset of a time from GMT: "Z", "+01:00", "+0100" or "-03"; in seconds.
bool ScanOffset(TimeScanner& scanner, int64_t* seconds)
{
    *seconds = 0;
    if (scanner.Skip('Z') || scanner.Skip('z'))
        return true;
    const bool west = scanner.Next() == '-';
    if (!scanner.Skip('+') && !scanner.Skip('-'))
        return false;
    int hours = 0;
    int minutes = 0;
    if (!scanner.Number(2, 2, 23, &hours))
        return false;
    if (scanner.Skip(':') ? !scanner.Number(2, 2, 59, &minutes)
                          : !scanner.AtEnd() && !scanner.Number(2, 2, 59, &minutes))
        return false;
    *seconds = (int64_t{hours} * 60 + minutes) * (west ? 60 : -60);
    return true;
}

}  // namespace

uint64_t HundredthsOf(const TIMEDATE& time)
{
    const uint64_t day = time.Innards[1] == kNoDate ? 0 : time.Innards[1] & kDayMask;
    const uint64_t ticks = time.Innards[0] == kNoTimeOfDay ? 0 : time.Innards[0];
    return day * kTicksADay + ticks;
}

TIMEDATE TimeFromHundredths(uint64_t hundredths)
{
    return {{static_cast<DWORD>(hundredths % kTicksADay), static_cast<DWORD>(hundredths / kTicksADay)}};
}

TIMEDATE TimeFromUnix(int64_t seconds, int hundredths)
{
    const int64_t ticks = (seconds + int64_t{kUnixEpochDay} * 86400) * 100 + hundredths;
    return TimeFromHundredths(ticks < 0 ? 0 : static_cast<uint64_t>(ticks));
}

std::optional<int64_t> UnixFromTime(const TIMEDATE& time)
{
    if (time.Innards[1] == kNoDate)
        return std::nullopt;
    return static_cast<int64_t>(HundredthsOf(time) / 100) - int64_t{kUnixEpochDay} * 86400;
}

std::string IsoFromTime(const TIMEDATE& time)
{
    std::string text;
    if (time.Innards[1] != kNoDate) {
        const CivilDate date = CivilFromDay(time.Innards[1] & kDayMask);
        text = Format("%04d-%02d-%02d", date.year, date.month, date.day);
    }
    if (time.Innards[0] == kNoTimeOfDay)
        return text;
    const uint32_t ticks = time.Innards[0];
    text += Format("T%02u:%02u:%02u", ticks / 360000, ticks / 6000 % 60, ticks / 100 % 60);
    if (ticks % 100 != 0)
        text += Format(".%02u", ticks % 100);
    return text + "Z";
}

std::optional<TIMEDATE> TimeFromIso(std::string_view text)
{
    TimeScanner scanner(text);
    TIMEDATE time{{kNoTimeOfDay, kNoDate}};
    const bool timeOnly = scanner.Next() == 'T';
    if (!timeOnly && !scanner.Date(&time.Innards[1]))
        return std::nullopt;
    if (!timeOnly && scanner.AtEnd())
        return time;
    if (!scanner.Skip('T') && !scanner.Skip(' ') && !scanner.Skip('t'))
        return std::nullopt;
    int64_t offset = 0;
    if (!scanner.TimeOfDay(&time.Innards[0]) || !ScanOffset(scanner, &offset) || !scanner.AtEnd())
        return std::nullopt;
    if (timeOnly)
        return offset == 0 ? std::optional(time) : std::nullopt;  // without a date, there is no day to move into
    const int64_t moved = static_cast<int64_t>(HundredthsOf(time)) + offset * 100;
    if (moved < 0)
        return std::nullopt;
    return TimeFromHundredths(static_cast<uint64_t>(moved));
}

bool operator==(const UNID& a, const UNID& b)
{
    return a.File.Innards[0] == b.File.Innards[0] && a.File.Innards[1] == b.File.Innards[1] &&
           a.Note.Innards[0] == b.Note.Innards[0] && a.Note.Innards[1] == b.Note.Innards[1];
}

std::string HexFromId(const TIMEDATE& id)
{
    return Format("%08X%08X", id.Innards[1], id.Innards[0]);
}

std::optional<TIMEDATE> IdFromHex(std::string_view hex)
{
    uint64_t value = 0;
    const char* const end = hex.data() + hex.size();
    const auto [stop, error] = std::from_chars(hex.data(), end, value, 16);
    if (hex.size() != 16 || error != std::errc{} || stop != end)
        return std::nullopt;
    return TIMEDATE{{static_cast<DWORD>(value), static_cast<DWORD>(value >> 32)}};
}

std::string HexFromUnid(const UNID& unid)
{
    return HexFromId(unid.File) + HexFromId(unid.Note);
}

std::optional<UNID> UnidFromHex(std::string_view hex)
{
    if (hex.size() != 32)
        return std::nullopt;
    const auto file = IdFromHex(hex.substr(0, 16));
    const auto note = IdFromHex(hex.substr(16));
    if (!file || !note)
        return std::nullopt;
    return UNID{*file, *note};
}

}  // namespace pavex
