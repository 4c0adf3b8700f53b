// client/foundation/date.cpp: dates, and the proleptic Gregorian calendar.
// Days are counted from 2001-01-01, the first day of a 400-year cycle: so the leap day is always the last
// one of a 4-, 100- or 400-year period, and the arithmetic needs no special years.
#include "client/foundation/date.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

using namespace pavex::cf;

namespace {

constexpr int64_t kEpochYear = 2001;
constexpr int64_t kDaysOf400Years = 146097;
constexpr int64_t kDaysOf100Years = 36524;
constexpr int64_t kDaysOf4Years = 1461;
constexpr int64_t kSecondsOfDay = 86400;

// Days before each month of a common year; the last entry is the year's length.
constexpr int kDaysBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};

constexpr int64_t FloorDivide(int64_t value, int64_t divisor)
{
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

constexpr bool IsLeap(int64_t year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

// month 1..13
constexpr int DaysBeforeMonth(int64_t year, int month)
{
    return kDaysBefore[month - 1] + (month > 2 && IsLeap(year) ? 1 : 0);
}

constexpr int64_t DaysBeforeYear(int64_t year)
{
    const int64_t years = year - kEpochYear;
    return 365 * years + FloorDivide(years, 4) - FloorDivide(years, 100) + FloorDivide(years, 400);
}

// The year that a day falls in; *dayOfYear counts from 0.
int64_t YearOfDay(int64_t day, int64_t* dayOfYear)
{
    const int64_t cycles = FloorDivide(day, kDaysOf400Years);
    int64_t rest = day - cycles * kDaysOf400Years;
    const int64_t centuries = std::min<int64_t>(rest / kDaysOf100Years, 3);  // the last one is a day longer
    rest -= centuries * kDaysOf100Years;
    const int64_t quadrennia = rest / kDaysOf4Years;
    rest -= quadrennia * kDaysOf4Years;
    const int64_t years = std::min<int64_t>(rest / 365, 3);
    *dayOfYear = rest - years * 365;
    return kEpochYear + 400 * cycles + 100 * centuries + 4 * quadrennia + years;
}

SInt32 ClampYear(int64_t year)
{
    constexpr int64_t kLeast = std::numeric_limits<SInt32>::min();
    constexpr int64_t kMost = std::numeric_limits<SInt32>::max();
    return static_cast<SInt32>(std::clamp(year, kLeast, kMost));
}

bool DayIsInMonth(const CFGregorianDate& date)
{
    return date.day <= DaysBeforeMonth(date.year, date.month + 1) - DaysBeforeMonth(date.year, date.month);
}

}  // namespace

extern "C" {

const CFTimeInterval kCFAbsoluteTimeIntervalSince1970 = 978307200.0;

CFDateRef CFDateCreate(CFAllocatorRef, CFAbsoluteTime at)
{
    return ToRef<CFDateRef>(New<Date>(at));
}

CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef theDate)
{
    return As<Date>(theDate).At();
}

Boolean CFGregorianDateIsValid(CFGregorianDate gdate, CFOptionFlags unitFlags)
{
    const auto flagged = [unitFlags](CFOptionFlags units) { return (unitFlags & units) == units; };
    constexpr CFOptionFlags kWholeDay = kCFGregorianUnitsYears | kCFGregorianUnitsMonths | kCFGregorianUnitsDays;
    if (flagged(kCFGregorianUnitsYears) && gdate.year <= 0)
        return 0;
    if (flagged(kCFGregorianUnitsMonths) && (gdate.month < 1 || gdate.month > 12))
        return 0;
    if (flagged(kCFGregorianUnitsDays) && (gdate.day < 1 || gdate.day > 31))
        return 0;
    if (flagged(kCFGregorianUnitsHours) && (gdate.hour < 0 || gdate.hour > 23))
        return 0;
    if (flagged(kCFGregorianUnitsMinutes) && (gdate.minute < 0 || gdate.minute > 59))
        return 0;
    if (flagged(kCFGregorianUnitsSeconds) && (gdate.second < 0.0 || gdate.second >= 60.0))
        return 0;
    return !flagged(kWholeDay) || DayIsInMonth(gdate);
}

CFAbsoluteTime CFGregorianDateGetAbsoluteTime(CFGregorianDate gdate, CFTimeZoneRef)
{
    const int64_t year = int64_t{gdate.year} + (gdate.month == 13 ? 1 : 0);
    const int month = gdate.month >= 1 && gdate.month <= 12 ? gdate.month : 1;
    const int64_t day = DaysBeforeYear(year) + DaysBeforeMonth(year, month) + gdate.day - 1;
    return static_cast<double>(day) * static_cast<double>(kSecondsOfDay) + 3600.0 * gdate.hour + 60.0 * gdate.minute +
           gdate.second;
}

CFGregorianDate CFAbsoluteTimeGetGregorianDate(CFAbsoluteTime at, CFTimeZoneRef)
{
    // Seconds of more years than 32 bits count: beyond, the year is clamped anyway.
    constexpr double kMostSeconds = 7.0e16;
    const double whole = std::isnan(at) ? 0.0 : std::clamp(std::floor(at), -kMostSeconds, kMostSeconds);
    const double fraction = std::isfinite(at) && std::abs(at) < kMostSeconds ? at - whole : 0.0;
    const auto seconds = static_cast<int64_t>(whole);
    const int64_t day = FloorDivide(seconds, kSecondsOfDay);
    const int64_t secondOfDay = seconds - day * kSecondsOfDay;

    int64_t dayOfYear = 0;
    const int64_t year = YearOfDay(day, &dayOfYear);
    int month = 12;
    while (DaysBeforeMonth(year, month) > dayOfYear)
        --month;
    CFGregorianDate date{};
    date.year = ClampYear(year);
    date.month = static_cast<SInt8>(month);
    date.day = static_cast<SInt8>(dayOfYear - DaysBeforeMonth(year, month) + 1);
    date.hour = static_cast<SInt8>(secondOfDay / 3600);
    date.minute = static_cast<SInt8>(secondOfDay / 60 % 60);
    date.second = static_cast<double>(secondOfDay % 60) + fraction;
    return date;
}

}  // extern "C"
