// client/store/civil_date.h: Julian day numbers and dates of the proleptic Gregorian calendar.
#pragma once

#include <cstdint>

namespace pavex {

constexpr uint32_t kDayMask = 0x00FFFFFF;                         // the day number in a date word
constexpr uint32_t kUnixEpochDay = 2440588;                       // Julian day number of 1970-01-01
constexpr int kDaysTo400YearsBeforeZero = 1721120 - 146097 * 12;  // 0000-03-01, twelve cycles back: before day 0

struct CivilDate {
    int year;  // astronomical: 0 is 1 BC
    int month, day;
};

// Years are counted from March, so that the leap day is the last of its year.
constexpr CivilDate CivilFromDay(uint32_t julianDay)
{
    const int64_t days = int64_t{julianDay} - kDaysTo400YearsBeforeZero;  // positive
    const int64_t cycle = days / 146097;
    const int64_t inCycle = days % 146097;
    const int64_t century = inCycle == 146096 ? 3 : inCycle / 36524;
    const int64_t inCentury = inCycle - century * 36524;
    const int64_t leap = inCentury / 1461;
    const int64_t inLeap = inCentury % 1461;
    const int64_t year = inLeap == 1460 ? 3 : inLeap / 365;
    const int64_t inYear = inLeap - year * 365;
    const int64_t month = (inYear * 5 + 2) / 153;  // 0 March .. 11 February
    const int64_t civilYear = cycle * 400 + century * 100 + leap * 4 + year - 4800 + (month >= 10 ? 1 : 0);
    return {static_cast<int>(civilYear), static_cast<int>(month < 10 ? month + 3 : month - 9),
            static_cast<int>(inYear - (month * 153 + 2) / 5 + 1)};
}

// Negative for dates before day 0.
constexpr int64_t DayFromCivil(const CivilDate& date)
{
    const int64_t year = int64_t{date.year} + 4800 - (date.month < 3 ? 1 : 0);
    const int64_t month = date.month < 3 ? date.month + 9 : date.month - 3;
    const int64_t before = year * 365 + year / 4 - year / 100 + year / 400;  // for year >= 0
    return kDaysTo400YearsBeforeZero + before + (month * 153 + 2) / 5 + date.day - 1;
}

constexpr bool IsCivilDate(const CivilDate& date)
{
    if (date.year < -4799 || date.month < 1 || date.month > 12 || date.day < 1 || date.day > 31)
        return false;
    const CivilDate back = CivilFromDay(static_cast<uint32_t>(DayFromCivil(date) < 0 ? 0 : DayFromCivil(date)));
    return back.year == date.year && back.month == date.month && back.day == date.day;
}

static_assert(DayFromCivil({1970, 1, 1}) == kUnixEpochDay);
static_assert(DayFromCivil({2000, 2, 29}) == 2451604);
static_assert(DayFromCivil({-4713, 11, 24}) == 0);
static_assert(CivilFromDay(0).year == -4713 && CivilFromDay(0).month == 11 && CivilFromDay(0).day == 24);
static_assert(!IsCivilDate({1900, 2, 29}) && IsCivilDate({2000, 2, 29}));

}  // namespace pavex
