// tests/client/foundation/date_test.cpp: dates against the standard library's calendar, day by day.
#include "client/foundation/date.h"

#include <bit>
#include <chrono>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "tests/client/foundation/foundation_fixture.h"

class FoundationDate : public FoundationTest {};

namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

CFGregorianDate Date(int year, int month, int day, int hour = 0, int minute = 0, double second = 0)
{
    return {
        year,  static_cast<SInt8>(month), static_cast<SInt8>(day), static_cast<SInt8>(hour), static_cast<SInt8>(minute),
        second};
}

std::string Text(const CFGregorianDate& date)
{
    char text[96];
    std::snprintf(text, sizeof text, "%d-%d-%d %d:%d:%.17g", date.year, date.month, date.day, date.hour, date.minute,
                  date.second);
    return text;
}

std::string Text(CFAbsoluteTime at)
{
    return Text(CFAbsoluteTimeGetGregorianDate(at, nullptr));
}

bool Same(const CFGregorianDate& a, const CFGregorianDate& b)
{
    return a.year == b.year && a.month == b.month && a.day == b.day && a.hour == b.hour && a.minute == b.minute &&
           a.second == b.second;
}

// Compares every day from the first to the last year, both ways, with another calendar.
void CheckDays(int firstYear, int lastYear)
{
    const sys_days epoch = std::chrono::year(2001) / 1 / 1;
    const sys_days end = std::chrono::year(lastYear) / 12 / 31;
    for (sys_days day = std::chrono::year(firstYear) / 1 / 1; day <= end; day += std::chrono::days(1)) {
        const year_month_day expected(day);
        const auto seconds = static_cast<double>((day - epoch).count()) * 86400.0;
        const CFGregorianDate midnight =
            Date(static_cast<int>(expected.year()), static_cast<int>(static_cast<unsigned>(expected.month())),
                 static_cast<int>(static_cast<unsigned>(expected.day())));
        CFGregorianDate last = midnight;
        last.hour = 23, last.minute = 59, last.second = 59.5;
        const bool same = CFGregorianDateGetAbsoluteTime(midnight, nullptr) == seconds &&
                          Same(CFAbsoluteTimeGetGregorianDate(seconds, nullptr), midnight) &&
                          Same(CFAbsoluteTimeGetGregorianDate(seconds + 86399.5, nullptr), last) &&
                          (CFGregorianDateIsValid(midnight, kCFGregorianAllUnits) != 0) == (midnight.year > 0);
        if (!same)
            FAIL() << Text(midnight) << " came back as " << Text(seconds);
    }
}

}  // namespace

TEST_F(FoundationDate, EveryDayFrom1583To2400MatchesTheCalendar)
{
    CheckDays(1583, 2400);
}

TEST_F(FoundationDate, EveryDayAroundTheYearZeroMatchesTheProlepticCalendar)
{
    CheckDays(-801, 401);
}

TEST_F(FoundationDate, FarYearsMatchTheCalendar)
{
    CheckDays(-32760, -32756);
    CheckDays(9998, 10001);
    CheckDays(32760, 32764);
}

TEST_F(FoundationDate, ExactlyTheDaysOfTheCalendarAreValid)
{
    for (int year = 1580; year <= 2405; ++year) {
        for (int month = 0; month <= 13; ++month) {
            for (int day = 0; day <= 32; ++day) {
                const year_month_day other{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day))};
                if ((CFGregorianDateIsValid(Date(year, month, day), kCFGregorianAllUnits) != 0) != other.ok())
                    FAIL() << year << '-' << month << '-' << day;
            }
        }
    }
}

TEST_F(FoundationDate, ValidityLooksOnlyAtTheFlaggedUnits)
{
    const CFGregorianDate bad = Date(0, 13, 32, 24, 60, 60.0);
    EXPECT_TRUE(CFGregorianDateIsValid(bad, 0));
    for (const CFOptionFlags unit : {kCFGregorianUnitsYears, kCFGregorianUnitsMonths, kCFGregorianUnitsDays,
                                     kCFGregorianUnitsHours, kCFGregorianUnitsMinutes, kCFGregorianUnitsSeconds})
        EXPECT_FALSE(CFGregorianDateIsValid(bad, unit)) << unit;
    const CFGregorianDate february = Date(2001, 2, 30);
    EXPECT_FALSE(CFGregorianDateIsValid(february, kCFGregorianAllUnits));
    EXPECT_TRUE(CFGregorianDateIsValid(february, kCFGregorianUnitsMonths | kCFGregorianUnitsDays));
}

TEST_F(FoundationDate, ValidityHasTheseEdges)
{
    EXPECT_FALSE(CFGregorianDateIsValid(Date(0, 1, 1), kCFGregorianAllUnits));
    EXPECT_FALSE(CFGregorianDateIsValid(Date(-5, 1, 1), kCFGregorianAllUnits));
    EXPECT_TRUE(CFGregorianDateIsValid(Date(1, 1, 1), kCFGregorianAllUnits));
    EXPECT_TRUE(CFGregorianDateIsValid(Date(2000, 2, 29, 23, 59, 59.999), kCFGregorianAllUnits));
    EXPECT_FALSE(CFGregorianDateIsValid(Date(1900, 2, 29), kCFGregorianAllUnits));
    EXPECT_FALSE(CFGregorianDateIsValid(Date(2001, 1, 1, -1), kCFGregorianAllUnits));
    EXPECT_FALSE(CFGregorianDateIsValid(Date(2001, 1, 1, 0, -1), kCFGregorianAllUnits));
    EXPECT_FALSE(CFGregorianDateIsValid(Date(2001, 1, 1, 0, 0, 60.0), kCFGregorianAllUnits));
    EXPECT_TRUE(CFGregorianDateIsValid(Date(2001, 1, 1, 0, 0, -0.0), kCFGregorianAllUnits));
    EXPECT_TRUE(CFGregorianDateIsValid(Date(2001, 1, 1, 0, 0, std::nan("")), kCFGregorianAllUnits));
    EXPECT_FALSE(CFGregorianDateIsValid(Date(2001, 13, 1), kCFGregorianAllUnits));
    EXPECT_FALSE(CFGregorianDateIsValid(Date(2001, -128, 127), kCFGregorianAllUnits));
}

TEST_F(FoundationDate, UnitsTooLargeOrNegativeAddUp)
{
    const auto at = [](const CFGregorianDate& date) { return CFGregorianDateGetAbsoluteTime(date, nullptr); };
    EXPECT_EQ(at(Date(2001, 2, 29)), at(Date(2001, 3, 1)));
    EXPECT_EQ(at(Date(2001, 3, 0)), at(Date(2001, 2, 28)));
    EXPECT_EQ(at(Date(2001, 1, 1, -1, 90, -60)), at(Date(2001, 1, 1, 0, 29, 0)));
    EXPECT_EQ(at(Date(2001, 1, 1, 24)), 86400.0);
    EXPECT_EQ(at(Date(2001, 13, 1)), at(Date(2002, 1, 1)));
    for (const int month : {0, -1, -128, 14, 127})
        EXPECT_EQ(at(Date(2001, month, 5)), at(Date(2001, 1, 5))) << month;
    EXPECT_EQ(at(Date(INT32_MAX, 13, 1)), at(Date(INT32_MAX, 1, 1)) + 365 * 86400.0);
}

TEST_F(FoundationDate, TheEpochIsTheStartOf2001)
{
    EXPECT_EQ(Text(0.0), "2001-1-1 0:0:0");
    EXPECT_EQ(CFGregorianDateGetAbsoluteTime(Date(1970, 1, 1), nullptr), -kCFAbsoluteTimeIntervalSince1970);
    EXPECT_EQ(Text(0.25), "2001-1-1 0:0:0.25");
    EXPECT_EQ(Text(-0.25), "2000-12-31 23:59:59.75");
    EXPECT_EQ(Text(-1e-20), "2000-12-31 23:59:60");
}

TEST_F(FoundationDate, TimesWithoutACalendarDayDoNoHarm)
{
    EXPECT_EQ(CFAbsoluteTimeGetGregorianDate(1e18, nullptr).year, INT32_MAX);
    EXPECT_EQ(CFAbsoluteTimeGetGregorianDate(INFINITY, nullptr).year, INT32_MAX);
    EXPECT_EQ(CFAbsoluteTimeGetGregorianDate(-INFINITY, nullptr).year, INT32_MIN);
    EXPECT_EQ(Text(std::nan("")), "2001-1-1 0:0:0");
}

TEST_F(FoundationDate, RandomTimesComeBack)
{
    std::mt19937_64 random(20010101);
    std::uniform_int_distribution<int64_t> seconds(-100'000'000'000, 400'000'000'000);
    for (int i = 0; i < 100000; ++i) {
        const auto at = static_cast<double>(seconds(random)) + 0.5;
        const CFGregorianDate date = CFAbsoluteTimeGetGregorianDate(at, nullptr);
        ASSERT_EQ(CFGregorianDateGetAbsoluteTime(date, nullptr), at);
    }
}

TEST_F(FoundationDate, ADateKeepsItsTimeBitByBit)
{
    const double times[] = {0.0, -0.0, 1e300, INFINITY, -INFINITY, std::nan(""), 123456789.25};
    for (const double at : times) {
        const Owned<CFDateRef> date(CFDateCreate(nullptr, at));
        EXPECT_EQ(std::bit_cast<uint64_t>(CFDateGetAbsoluteTime(date)), std::bit_cast<uint64_t>(at));
    }
    EXPECT_EQ(sizeof(CFGregorianDate), 16u);
    EXPECT_EQ(offsetof(CFGregorianDate, second), 8u);
}
