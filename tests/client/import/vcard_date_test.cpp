// tests/client/import/vcard_date_test.cpp: dates as cards write them.
#include "client/import/vcard_date.h"

#include <gtest/gtest.h>

namespace pavex {
namespace {

std::string Day(std::string_view text)
{
    const std::optional<TIMEDATE> day = ReadCardDay(text);
    return day ? IsoFromTime(*day) : "none";
}

TEST(VcardDay, IsReadInEachForm)
{
    EXPECT_EQ(Day("1985-04-12"), "1985-04-12");
    EXPECT_EQ(Day("19850412"), "1985-04-12");
    EXPECT_EQ(Day("1953-10-15T23:10:00Z"), "1953-10-15");
    EXPECT_EQ(Day("19531015T231000-0600"), "1953-10-15");
    EXPECT_EQ(Day("1953-10-15 23:10"), "1953-10-15");
    EXPECT_EQ(Day("2000-02-29"), "2000-02-29");
}

TEST(VcardDay, IsNoneWithoutEachOfItsParts)
{
    for (const char* text :
         {"", "--0412", "--04-12", "---12", "1985", "1985-04", "198504", "-1985-04-12", "circa 1800", "1985-02-29",
          "1985-13-01", "1985-04-00", "0001-01-01", "1985-04-12T", "1985-04-12Tnoon", "1985-04-12T25:00", "1985/04/12"})
        EXPECT_EQ(Day(text), std::string(text) == "1985-04-12T" ? "1985-04-12" : "none") << text;
}

TEST(VcardTime, IsMovedToGreenwich)
{
    EXPECT_EQ(CompactCardTime("20120801T184631Z"), "20120801T184631Z");
    EXPECT_EQ(CompactCardTime("2012-03-05T13:32:54Z"), "20120305T133254Z");
    EXPECT_EQ(CompactCardTime("1995-10-31T22:27:10+01:00"), "19951031T212710Z");
    EXPECT_EQ(CompactCardTime("1995-10-31T22:27:10-0830"), "19951101T065710Z");
    EXPECT_EQ(CompactCardTime("2000-01-01T00:30:00+01"), "19991231T233000Z");
    EXPECT_EQ(CompactCardTime("2012-03-05T13:32:54.123Z"), "20120305T133254Z");
    EXPECT_EQ(CompactCardTime("20120305T133254"), "20120305T133254Z");
    EXPECT_EQ(CompactCardTime("20120305T1332Z"), "20120305T133200Z");
    EXPECT_EQ(CompactCardTime("2008-04-24"), "20080424T000000Z");
}

TEST(VcardTime, IsEmptyWhenItIsNone)
{
    for (const char* text : {"", "yesterday", "2012-03", "2012-03-05T1Z", "2012-03-05T13:32:54+1", "2012-03-05T13:99"})
        EXPECT_EQ(CompactCardTime(text), "") << text;
}

TEST(VcardTime, ComesBackFromItsCompactForm)
{
    EXPECT_EQ(IsoFromTime(TimeOfCompact("20120305T133254Z").value()), "2012-03-05T13:32:54Z");
    EXPECT_FALSE(TimeOfCompact("").has_value());
}

}  // namespace
}  // namespace pavex
