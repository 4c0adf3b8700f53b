// tests/client/import/calendar_zone_test.cpp
#include "client/import/calendar_zone.h"

#include "tests/client/import/calendar_fixture.h"

namespace pavex {
namespace {

class CalendarZoneTest : public CalendarTest {
protected:
    // The start of an event in a zone, after the definition lines.
    std::string Start(const std::string& zone, const std::string& local, const std::string& definition = "")
    {
        Write("c.ics", Calendar(definition + Event("SEQUENCE:" + std::to_string(++sequence_) +
                                                   "\nDTSTART;TZID=" + zone + ":" + local + "\n")));
        report_ = Run({"c.ics"});
        return Notes().at(0).at("StartDateTime");
    }

    int sequence_ = 0;
};

constexpr const char* kTokyoByAnotherName = "BEGIN:VTIMEZONE\nTZID:My zone\nBEGIN:STANDARD\nDTSTART:19700101T000000\n"
                                            "TZOFFSETFROM:+0900\nTZOFFSETTO:+0900\nEND:STANDARD\nEND:VTIMEZONE\n";

TEST_F(CalendarZoneTest, IsKnownByTheNamesOfManyPrograms)
{
    EXPECT_EQ(Start("America/New_York", "20070301T120000"), "2007-03-01T17:00:00Z");
    EXPECT_EQ(Start("W. Europe Standard Time", "20070701T120000"), "2007-07-01T10:00:00Z");
    EXPECT_EQ(Start("/example.org/20070101_1/Asia/Tokyo", "20070301T120000"), "2007-03-01T03:00:00Z");
    EXPECT_TRUE(report_.notices.empty());
}

TEST_F(CalendarZoneTest, IsWhatItsDefinitionSays)
{
    EXPECT_EQ(Start("My zone", "20070301T120000", kTokyoByAnotherName), "2007-03-01T03:00:00Z");
}

TEST_F(CalendarZoneTest, ChangesToSummerTimeByTheRulesOfItsDefinition)
{
    const std::string definition = "BEGIN:VTIMEZONE\nTZID:Europe/Berlin\n"
                                   "BEGIN:STANDARD\nDTSTART:19701101T030000\nRRULE:FREQ=YEARLY;BYMONTH=11;BYDAY=1SU\n"
                                   "TZOFFSETFROM:+0200\nTZOFFSETTO:+0100\nEND:STANDARD\n"
                                   "BEGIN:DAYLIGHT\nDTSTART:19700501T020000\nRRULE:FREQ=YEARLY;BYMONTH=5;BYDAY=1SU\n"
                                   "TZOFFSETFROM:+0100\nTZOFFSETTO:+0200\nEND:DAYLIGHT\nEND:VTIMEZONE\n";
    EXPECT_EQ(Start("Europe/Berlin", "20070415T120000", definition), "2007-04-15T11:00:00Z");  // not as in Berlin
    EXPECT_EQ(Start("Europe/Berlin", "20070515T120000", definition), "2007-05-15T10:00:00Z");
    EXPECT_EQ(Start("Europe/Berlin", "20471115T120000", definition), "2047-11-15T11:00:00Z");
}

TEST_F(CalendarZoneTest, FallsBackToItsNameWhereTheDefinitionMakesNoSense)
{
    const std::string lines[] = {
        "",
        "BEGIN:STANDARD\nEND:STANDARD\n",
        "BEGIN:STANDARD\nDTSTART:19700101T000000\nTZOFFSETFROM:+0500\nEND:STANDARD\n",
        "BEGIN:STANDARD\nDTSTART:long ago\nTZOFFSETFROM:+0500\nTZOFFSETTO:+0500\nEND:STANDARD\n",
        "BEGIN:STANDARD\nDTSTART:19700101T000000\nTZOFFSETFROM:five\nTZOFFSETTO:+0500\nEND:STANDARD\n",
        "BEGIN:STANDARD\nDTSTART:19700101T000000\nTZOFFSETFROM:+0500\nTZOFFSETTO:+0500\nRRULE:FREQ=NEVER\nEND:"
        "STANDARD\n",
    };
    for (const std::string& rules : lines) {
        EXPECT_EQ(
            Start("Asia/Tokyo", "20070301T120000", "BEGIN:VTIMEZONE\nTZID:Asia/Tokyo\n" + rules + "END:VTIMEZONE\n"),
            "2007-03-01T03:00:00Z")
            << rules;
    }
}

TEST_F(CalendarZoneTest, TakesADefinitionWithParametersAndWithoutARule)
{
    EXPECT_EQ(Start("Ours", "20070301T120000",
                    "BEGIN:VTIMEZONE\nTZID:Ours\nBEGIN:DAYLIGHT\nDTSTART;VALUE=DATE:20060101\nTZOFFSETFROM:+0100\n"
                    "TZOFFSETTO:+0200\nTZNAME:Ours\nEND:DAYLIGHT\nEND:VTIMEZONE\n"),
              "2007-03-01T10:00:00Z");
}

TEST_F(CalendarZoneTest, TakesTheFirstOfTheHoursThatTheClocksRepeatAndMovesThoseTheySkip)
{
    EXPECT_EQ(Start("Europe/Berlin", "20261025T023000"), "2026-10-25T00:30:00Z");
    EXPECT_EQ(Start("Europe/Berlin", "20261025T030000"), "2026-10-25T02:00:00Z");
    EXPECT_EQ(Start("Europe/Berlin", "20260329T023000"), "2026-03-29T01:30:00Z");
    const std::string definition = "BEGIN:VTIMEZONE\nTZID:Ours\n"
                                   "BEGIN:STANDARD\nDTSTART:19701025T030000\nRRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU\n"
                                   "TZOFFSETFROM:+0200\nTZOFFSETTO:+0100\nEND:STANDARD\n"
                                   "BEGIN:DAYLIGHT\nDTSTART:19700329T020000\nRRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU\n"
                                   "TZOFFSETFROM:+0100\nTZOFFSETTO:+0200\nEND:DAYLIGHT\nEND:VTIMEZONE\n";
    EXPECT_EQ(Start("Ours", "20261025T023000", definition), "2026-10-25T00:30:00Z");
    EXPECT_EQ(Start("Ours", "20260329T023000", definition), "2026-03-29T01:30:00Z");
}

TEST_F(CalendarZoneTest, IsThatOfItsLocationWhereDefinitionAndNameAreNoHelp)
{
    EXPECT_EQ(Start("Zone 7", "20070301T120000",
                    "BEGIN:VTIMEZONE\nTZID:Zone 7\nBEGIN:STANDARD\nDTSTART:never\nEND:STANDARD\n"
                    "X-LIC-LOCATION:Asia/Tokyo\nEND:VTIMEZONE\n"),
              "2007-03-01T03:00:00Z");
    EXPECT_TRUE(report_.notices.empty());
}

TEST_F(CalendarZoneTest, IsTheUsersOwnWhereNobodyKnowsIt)
{
    EXPECT_EQ(Start("Atlantis", "20070301T120000"), "2007-03-01T11:00:00Z");
    ASSERT_EQ(report_.notices.size(), 1U);
    EXPECT_EQ(report_.notices[0].reason, "its time zone \"Atlantis\" is not known: its times were taken as local ones");
}

TEST_F(CalendarZoneTest, IsTheUsersOwnForFloatingTimes)
{
    EXPECT_EQ(ReadEvent("DTSTART:20070701T120000\n")["StartDateTime"], "2007-07-01T10:00:00Z");
    EXPECT_TRUE(report_.notices.empty());
}

}  // namespace
}  // namespace pavex
