// tests/client/store/timedate_test.cpp: time stamps, Unix times, ISO and hexadecimal forms.
#include "client/store/timedate.h"

#include <gtest/gtest.h>

#include <chrono>

#include "client/store/civil_date.h"

using namespace pavex;

namespace {

std::string Again(std::string_view iso)
{
    const auto time = TimeFromIso(iso);
    return time ? IsoFromTime(*time) : "none";
}

}  // namespace

TEST(CivilDate, AgreesWithTheStandardCalendarOnEveryDayOfTenThousandYears)
{
    using namespace std::chrono;
    for (sys_days day = year{-4000} / 1 / 1; day < sys_days(year{6000} / 1 / 1); day += days{1}) {
        const year_month_day expected(day);
        const auto julian = static_cast<uint32_t>(day.time_since_epoch().count() + int{kUnixEpochDay});
        const CivilDate civil = CivilFromDay(julian);
        ASSERT_EQ(civil.year, int(expected.year()));
        ASSERT_EQ(civil.month, int(unsigned(expected.month())));
        ASSERT_EQ(civil.day, int(unsigned(expected.day())));
        ASSERT_EQ(DayFromCivil(civil), int64_t{julian});
    }
}

TEST(TimeDate, CountsHundredthsFromTheMinimumTime)
{
    EXPECT_EQ(HundredthsOf({{0, 0}}), 0u);
    EXPECT_EQ(HundredthsOf({{5, 2}}), 2u * 8640000 + 5);
    const TIMEDATE time = TimeFromHundredths(HundredthsOf({{8639999, 2454165}}));
    EXPECT_EQ(time.Innards[0], 8639999u);
    EXPECT_EQ(time.Innards[1], 2454165u);
}

TEST(TimeDate, ConvertsUnixTimesBothWays)
{
    for (const int64_t seconds : {int64_t{0}, int64_t{-1}, int64_t{1173103200}, int64_t{-100000000000}})
        EXPECT_EQ(UnixFromTime(TimeFromUnix(seconds, 99)), seconds);
    EXPECT_EQ(UnixFromTime({{kNoTimeOfDay, kUnixEpochDay + 1}}), 86400);
    EXPECT_EQ(UnixFromTime({{0, kNoDate}}), std::nullopt);
}

TEST(TimeDate, ReadsItsIsoFormBack)
{
    for (const char* iso : {"2007-03-05T14:00:00Z", "2007-03-05T14:00:00.25Z", "2007-03-05", "1980-02-29",
                            "0001-01-01T00:00:00Z", "T14:30:00Z"})
        EXPECT_EQ(Again(iso), iso);
}

TEST(TimeDate, ReadsOffsetsAndShortFormsOfIsoTimes)
{
    EXPECT_EQ(Again("2007-03-05T01:00:00+02:00"), "2007-03-04T23:00:00Z");
    EXPECT_EQ(Again("2007-12-31T23:30:00-0130"), "2008-01-01T01:00:00Z");
    EXPECT_EQ(Again("2007-03-05T14:00Z"), "2007-03-05T14:00:00Z");
    EXPECT_EQ(Again("2007-03-05T14:00:00.2599Z"), "2007-03-05T14:00:00.25Z");
    EXPECT_EQ(Again("2007-03-05T14:00:00.5Z"), "2007-03-05T14:00:00.50Z");
    EXPECT_EQ(Again("2007-03-05 14:00:00+01"), "2007-03-05T13:00:00Z");
}

TEST(TimeDate, RefusesWhatIsNoIsoTime)
{
    for (const char* text : {"", "2007", "2007-13-05", "2007-02-29", "2007-03-05T24:00:00Z", "2007-03-05T14:00:00",
                             "2007-03-05T14:00:00Zx", "2007-3-5", "x", "2007-03-05T", "2007-03-05T14:00:00+1",
                             "2007-03-05T14:00:00.Z", "-9999-01-01"})
        EXPECT_EQ(TimeFromIso(text), std::nullopt) << text;
}

TEST(TimeDate, PrintsAndReadsIdsAsHexadecimal)
{
    const UNID unid{{{0x00000001, 0xABCDEF01}}, {{0xFFFFFFFF, 0x00256A3F}}};
    EXPECT_EQ(HexFromId(unid.File), "ABCDEF0100000001");
    EXPECT_EQ(HexFromUnid(unid), "ABCDEF010000000100256A3FFFFFFFFF");
    const auto again = UnidFromHex(HexFromUnid(unid));
    ASSERT_TRUE(again.has_value());
    EXPECT_TRUE(*again == unid);
    EXPECT_FALSE(UnidFromHex("ABCDEF0100000001").has_value());
    for (const char* text : {"", "ABCDEF010000000", "ABCDEF01000000010", "ABCDEF010000000G", "-BCDEF0100000001"})
        EXPECT_EQ(IdFromHex(text), std::nullopt) << text;
}
