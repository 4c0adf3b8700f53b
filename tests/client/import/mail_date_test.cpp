// tests/client/import/mail_date_test.cpp: dates as mail writes them.
#include "client/import/mail_date.h"

#include <gtest/gtest.h>

namespace pavex {
namespace {

constexpr int64_t kMarch5Noon = 1173096000;  // 2007-03-05 12:00:00 GMT

TEST(MailDate, ReadsTheFormsOfOneMoment)
{
    for (const char* text : {
             "Mon, 5 Mar 2007 12:00:00 +0000",
             "Mon, 05 Mar 2007 13:00:00 +0100 (CET)",
             "5 Mar 2007 07:00 EST",
             "Mon, 5 Mar 07 12:00:00 GMT",
             "Mon, 5 Mar 107 12:00:00 GMT",
             "Monday, 05-Mar-07 12:00:00 GMT",
             "Mon Mar  5 12:00:00 2007",
             "Mon Mar  5 07:00:00 EST 2007",
             "Mon Mar  5 13:00:00 2007 +0100",
             "2007-03-05 12:00:00 +0000",
             "2007-03-05T14:00:00+02:00",
             "2007-03-05T12:00:00Z",
             "Mon, 5 Mar 2007 12:00:00 GMT+0000",
             "Mon,5 Mar 2007 12:00:00.25 UT",
             "Mon, 5 Mar 2007 03:30:00 -0830",
             "(a comment) Mon, 5 (fifth) Mar 2007 12:00:00 -0000",
             "Mon 05 Mar 2007 12:00:00 PM GMT",
             "05 March 2007, 5:00 PM +0500",
         })
        EXPECT_EQ(ReadMailDate(text), kMarch5Noon) << text;
}

TEST(MailDate, HoldsTheCalendarAtItsEdges)
{
    EXPECT_EQ(ReadMailDate("Thu, 1 Jan 1970 00:00:00 +0000"), 0);
    EXPECT_EQ(ReadMailDate("29 Feb 2000 00:00:00 +0000"), 951782400);
    EXPECT_EQ(ReadMailDate("31 Dec 2199 23:59:59 +0000"), 7258118399);
    EXPECT_EQ(ReadMailDate("14 Feb 1969 00:00:00 +0000"), -27734400);
    EXPECT_EQ(ReadMailDate("1 Jan 2024 00:00:60 +0000"), 1704067260);  // a leap second
}

TEST(MailDate, RefusesImpossibleDates)
{
    for (const char* text : {
             "",
             "yesterday",
             "Mon, 5 Mar 2007",
             "12:00:00 +0000",
             "30 Feb 2007 12:00:00 +0000",
             "29 Feb 2007 12:00:00 +0000",
             "5 Mar 2007 24:00:00 +0000",
             "5 Mar 2007 12:60:00 +0000",
             "5 Mar 2007 12:00:00 +9900",
             "5 Mar 2007 12:00:00 +1500",
             "5 Mar 3609 12:00:00 +0000",
             "5 Mar 1899 12:00:00 +0000",
             "5 Mar 99999999999 12:00:00",
             "0 Mar 2007 12:00:00",
             "::::",
             "+",
             "(((((",
             "5 Mar 2007 12:00:00 +00000000000000000001",
         })
        EXPECT_EQ(ReadMailDate(text), std::nullopt) << text;
}

TEST(MailDate, KnowsNamedZones)
{
    EXPECT_EQ(ZoneMinutes("PST"), -480);
    EXPECT_EQ(ZoneMinutes("cest"), 120);
    EXPECT_EQ(ZoneMinutes("nowhere"), std::nullopt);
}

TEST(MailDate, ReadsFromLines)
{
    EXPECT_EQ(ReadFromLine("From ann@x.org Mon Mar  5 12:00:00 2007"), kMarch5Noon);
    EXPECT_EQ(ReadFromLine("From - Mon Mar 05 12:00:00 2007"), kMarch5Noon);
    EXPECT_EQ(ReadFromLine("From ann at x.org  Mon Mar  5 12:00:00 2007"), kMarch5Noon);
    EXPECT_EQ(ReadFromLine("From \"Sun Tzu\"@x.org Mon Mar  5 13:00:00 2007 +0100"), kMarch5Noon);
    EXPECT_EQ(ReadFromLine("From Mon to Fri we meet at 12:00 in 2007"), std::nullopt);
    EXPECT_EQ(ReadFromLine("From here on it gets steep."), std::nullopt);
    EXPECT_EQ(ReadFromLine("from ann@x.org Mon Mar  5 12:00:00 2007"), std::nullopt);
}

}  // namespace
}  // namespace pavex
