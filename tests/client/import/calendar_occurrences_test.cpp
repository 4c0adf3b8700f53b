// tests/client/import/calendar_occurrences_test.cpp: when entries take place, as their notes say it.
#include "client/import/calendar_occurrences.h"

#include "tests/client/import/calendar_fixture.h"

namespace pavex {
namespace {

class OccurrencesTest : public CalendarTest {
protected:
    std::string Times(const std::string& lines) { return ReadEvent(lines)["CalendarDateTime"]; }
    // Of an entry that was not read before.
    std::string FreshTimes(const std::string& lines)
    {
        const std::string uid = "UID:fresh" + std::to_string(++fresh_) + "\n";
        return Read("BEGIN:VEVENT\n" + uid + lines + "END:VEVENT\n")["CalendarDateTime"];
    }
    std::string Notice() const { return report_.notices.empty() ? "" : report_.notices.front().reason; }

private:
    int fresh_ = 0;
};

TEST_F(OccurrencesTest, AreTheStartAloneWhereNothingRepeats)
{
    EXPECT_EQ(Times("DTSTART:20070305T140000Z\n"), "2007-03-05T14:00:00Z");
}

TEST_F(OccurrencesTest, FollowARuleToItsCount)
{
    EXPECT_EQ(Times("DTSTART:20070305T140000Z\nRRULE:FREQ=WEEKLY;COUNT=3\n"),
              "2007-03-05T14:00:00Z|2007-03-12T14:00:00Z|2007-03-19T14:00:00Z");
}

TEST_F(OccurrencesTest, FollowAMonthlyRuleByWeekday)
{
    EXPECT_EQ(Times("DTSTART:20070309T080000Z\nRRULE:FREQ=MONTHLY;BYDAY=2FR;COUNT=3\n"),
              "2007-03-09T08:00:00Z|2007-04-13T08:00:00Z|2007-05-11T08:00:00Z");
}

TEST_F(OccurrencesTest, KeepTheirLocalHourWhenTheClocksChange)
{
    EXPECT_EQ(Times("DTSTART;TZID=Europe/Berlin:20070319T090000\nRRULE:FREQ=WEEKLY;COUNT=3\n"),
              "2007-03-19T08:00:00Z|2007-03-26T07:00:00Z|2007-04-02T07:00:00Z");
}

TEST_F(OccurrencesTest, LeaveOutExceptionsByTimeByDayAndByRule)
{
    EXPECT_EQ(Times("DTSTART;TZID=Europe/Berlin:20070305T090000\nRRULE:FREQ=DAILY;COUNT=6\n"
                    "EXDATE;TZID=Europe/Berlin:20070306T090000,20070308T090000\n"
                    "EXDATE;VALUE=DATE:20070307\nEXRULE:FREQ=DAILY;INTERVAL=5;COUNT=2\n"),
              "2007-03-09T08:00:00Z");
}

TEST_F(OccurrencesTest, LeaveOutAnExceptionThatIsWrittenInAnotherZone)
{
    EXPECT_EQ(Times("DTSTART;TZID=Europe/Berlin:20070305T090000\nRRULE:FREQ=DAILY;COUNT=2\nEXDATE:20070305T080000Z\n"),
              "2007-03-06T08:00:00Z");
}

TEST_F(OccurrencesTest, TakeInSingleDatesAndPeriodsEachOnce)
{
    EXPECT_EQ(Times("DTSTART:20070305T140000Z\nRDATE:20070401T140000Z,20070305T140000Z\n"
                    "RDATE;VALUE=PERIOD:20070310T140000Z/PT2H\n"),
              "2007-03-05T14:00:00Z|2007-03-10T14:00:00Z|2007-04-01T14:00:00Z");
}

TEST_F(OccurrencesTest, EndWithTheDayOrTheInstantThatTheRuleNames)
{
    EXPECT_EQ(Times("DTSTART:20070305T140000Z\nRRULE:FREQ=DAILY;UNTIL=20070307\n"),
              "2007-03-05T14:00:00Z|2007-03-06T14:00:00Z|2007-03-07T14:00:00Z");
    EXPECT_EQ(
        Times("SEQUENCE:1\nDTSTART;TZID=America/New_York:20070305T230000\nRRULE:FREQ=DAILY;UNTIL=20070307T040000Z\n"),
        "2007-03-06T04:00:00Z|2007-03-07T04:00:00Z");
    EXPECT_EQ(Times("SEQUENCE:2\nDTSTART;VALUE=DATE:20070305\nRRULE:FREQ=DAILY;UNTIL=20070306T120000Z\n"),
              "2007-03-05|2007-03-06");
}

TEST_F(OccurrencesTest, AreDaysWithoutATimeForDays)
{
    EXPECT_EQ(Times("DTSTART;VALUE=DATE:20070305\nRRULE:FREQ=YEARLY;COUNT=2\n"), "2007-03-05|2008-03-05");
}

TEST_F(OccurrencesTest, MoveAndVanishWithTheInstancesThatAreChanged)
{
    const NoteText note = Read(Event("DTSTART:20070305T140000Z\nRRULE:FREQ=DAILY;COUNT=4\nSUMMARY:Round\n") +
                               Event("RECURRENCE-ID:20070306T140000Z\nDTSTART:20070306T160000Z\nSUMMARY:Late round\n") +
                               Event("RECURRENCE-ID:20070307T140000Z\nDTSTART:20070307T140000Z\nSTATUS:CANCELLED\n"));
    EXPECT_EQ(note.at("CalendarDateTime"), "2007-03-05T14:00:00Z|2007-03-06T16:00:00Z|2007-03-08T14:00:00Z");
    EXPECT_EQ(note.at("Subject"), "Round");
    EXPECT_EQ(note.at("Body"), "Late round\n");
    EXPECT_EQ(Counts(report_), "added 1 updated 0 unchanged 0 removed 0 rejected 0");
}

TEST_F(OccurrencesTest, MoveFromAnInstanceOnWhenTheChangeSaysSo)
{
    EXPECT_EQ(
        Read(Event("DTSTART:20070305T140000Z\nRRULE:FREQ=DAILY;COUNT=4\n") +
             Event(
                 "RECURRENCE-ID;RANGE=THISANDFUTURE:20070307T140000Z\nDTSTART:20070307T150000Z\n"))["CalendarDateTime"],
        "2007-03-05T14:00:00Z|2007-03-06T14:00:00Z|2007-03-07T15:00:00Z|2007-03-08T15:00:00Z");
}

TEST_F(OccurrencesTest, EndBeforeAnInstanceThatIsCancelledWithAllThatFollow)
{
    EXPECT_EQ(Read(Event("DTSTART:20070305T140000Z\nRRULE:FREQ=DAILY\n") +
                   Event("RECURRENCE-ID;RANGE=THISANDFUTURE:20070307T140000Z\nDTSTART:20070307T140000Z\n"
                         "STATUS:CANCELLED\n"))["CalendarDateTime"],
              "2007-03-05T14:00:00Z|2007-03-06T14:00:00Z");
    EXPECT_EQ(Notice(), "");
}

TEST_F(OccurrencesTest, MoveByTheLastChangeBeforeThemInWhicheverOrderTheChangesStand)
{
    const std::string later = "RECURRENCE-ID;RANGE=THISANDFUTURE:20070308T140000Z\nDTSTART:20070308T170000Z\n";
    const std::string sooner = "RECURRENCE-ID;RANGE=THISANDFUTURE:20070306T140000Z\nDTSTART:20070306T150000Z\n";
    EXPECT_EQ(Read(Event("DTSTART:20070305T140000Z\nRRULE:FREQ=DAILY;COUNT=5\n") + Event(later) +
                   Event(sooner))["CalendarDateTime"],
              "2007-03-05T14:00:00Z|2007-03-06T15:00:00Z|2007-03-07T15:00:00Z|2007-03-08T17:00:00Z|"
              "2007-03-09T17:00:00Z");
}

TEST_F(OccurrencesTest, LeaveOutDaysThatAreExcludedWithATime)
{
    EXPECT_EQ(Times("DTSTART;VALUE=DATE:20070305\nRRULE:FREQ=DAILY;COUNT=4\n"
                    "EXDATE;TZID=Europe/Berlin:20070307T000000\nEXDATE:20070306T120000Z\n"),
              "2007-03-05|2007-03-08");
}

TEST_F(OccurrencesTest, MoveByDaysAlsoWhereTheInstanceIsNamedWithATime)
{
    EXPECT_EQ(Read(Event("DTSTART;VALUE=DATE:20070305\nRRULE:FREQ=DAILY;COUNT=3\n") +
                   Event("RECURRENCE-ID;TZID=Europe/Berlin;RANGE=THISANDFUTURE:20070306T000000\n"
                         "DTSTART;VALUE=DATE:20070307\n"))["CalendarDateTime"],
              "2007-03-05|2007-03-07|2007-03-08");
}

TEST_F(OccurrencesTest, AreThoseOfTheChangedInstancesWhereTheSeriesIsNotThere)
{
    EXPECT_EQ(Read(Event("RECURRENCE-ID:20070306T140000Z\nDTSTART:20070306T160000Z\n") +
                   Event("RECURRENCE-ID:20070307T140000Z\nDTSTART:20070307T170000Z\n"))["CalendarDateTime"],
              "2007-03-06T16:00:00Z|2007-03-07T17:00:00Z");
}

TEST_F(OccurrencesTest, AreAHundredFromTodayOnWhereARuleNeverEnds)
{
    const std::string times = Times("DTSTART:19990101T140000Z\nRRULE:FREQ=DAILY\n");
    EXPECT_EQ(times.size(), 100 * 21U - 1);
    EXPECT_EQ(times.substr(0, 20), "2007-03-05T14:00:00Z");
    EXPECT_EQ(times.substr(times.size() - 20), "2007-06-12T14:00:00Z");
    EXPECT_EQ(Notice(), "only 100 of its occurrences were taken, those around today");
}

TEST_F(OccurrencesTest, KeepTheLatestPastOnesWhereTheFutureHoldsFewer)
{
    const std::string times = Times("DTSTART:20061001T140000Z\nRRULE:FREQ=DAILY;UNTIL=20070310T140000Z\n");
    EXPECT_EQ(times.size(), 100 * 21U - 1);
    EXPECT_EQ(times.substr(0, 20), "2006-12-01T14:00:00Z");
    EXPECT_EQ(times.substr(times.size() - 20), "2007-03-10T14:00:00Z");
}

TEST_F(OccurrencesTest, AreAllThereWhenThereAreExactlyAHundred)
{
    EXPECT_EQ(Times("DTSTART:20000101T140000Z\nRRULE:FREQ=DAILY;COUNT=100\n").size(), 100 * 21U - 1);
    EXPECT_EQ(Notice(), "");
}

TEST_F(OccurrencesTest, StopWhereARuleIsTooFineToFollow)
{
    EXPECT_EQ(Times("DTSTART:19970101T000000Z\nRRULE:FREQ=SECONDLY;BYMONTH=2;BYMONTHDAY=30\n"), "1997-01-01T00:00:00Z");
    EXPECT_EQ(Notice(), "its repetition rule could not be followed to its end");
    Times("SEQUENCE:1\nDTSTART:19970101T000000Z\nRRULE:FREQ=SECONDLY\n");
    EXPECT_EQ(Notice().substr(0, 52), "its repetition rule could not be followed to its end");
}

TEST_F(OccurrencesTest, StopAtOnceWhereTheNextOneWouldBeLookedForStepByStep)
{
    for (const char* rule :
         {"FREQ=HOURLY;BYMONTH=2;BYMONTHDAY=30", "FREQ=MINUTELY;BYHOUR=3;BYMINUTE=31", "FREQ=SECONDLY;BYHOUR=3",
          "FREQ=MINUTELY;BYSECOND=1", "FREQ=DAILY;BYMONTH=2;BYMONTHDAY=30;BYHOUR=1,2,3;BYMINUTE=1,2",
          "FREQ=SECONDLY;BYMINUTE=5"}) {
        EXPECT_EQ(FreshTimes(std::string("DTSTART:20070305T140000Z\nRRULE:") + rule + "\n"), "2007-03-05T14:00:00Z")
            << rule;
        EXPECT_EQ(Notice(), "its repetition rule could not be followed to its end") << rule;
    }
    EXPECT_EQ(FreshTimes("DTSTART:20070305T140000Z\nRRULE:FREQ=HOURLY;BYHOUR=14;COUNT=2\n"),
              "2007-03-05T14:00:00Z|2007-03-06T14:00:00Z");
}

TEST_F(OccurrencesTest, FollowSixteenRules)
{
    std::string lines = "DTSTART:20070305T140000Z\n";
    for (int minute = 1; minute <= 20; ++minute)
        lines += "RRULE:FREQ=DAILY;COUNT=2;BYMINUTE=" + std::to_string(minute) + "\n";
    const std::string times = Times(lines);
    EXPECT_EQ(times.size(), 33 * 21U - 1);
    EXPECT_EQ(Notice(), "only the first 16 of its repetition rules were followed");
}

TEST_F(OccurrencesTest, SayThatTheyAreFewerWhereARuleOrADateIsNotUnderstood)
{
    const std::string start = "DTSTART:20070305T140000Z\n";
    for (const char* line : {"RRULE:FREQ=DAILY;BYDAY=XX", "RRULE:FREQ=DAILY;COUNT=0", "RRULE:FREQ=DAILY;INTERVAL=0",
                             "RRULE:D1 #3", "RRULE:MP1 1+ MO #3", "EXRULE:YEARLY"}) {
        EXPECT_EQ(FreshTimes(start + line + "\n"), "2007-03-05T14:00:00Z");
        EXPECT_EQ(Notice(), "its repetition rule is not understood") << line;
    }
    for (const char* line : {"RDATE:20071399T140000Z", "RDATE:20070306T140000Z,soon", "EXDATE:never", "DTEND:late",
                             "DTEND:20070230T140000Z", "DUE:x", "EXDATE;VALUE=DATE:20071301"}) {
        FreshTimes(start + line + "\n");
        EXPECT_EQ(Notice(), "one of its dates is not understood") << line;
    }
    for (const char* line : {"DURATION:an hour", "DURATION:P1H", "DURATION:1H"}) {
        FreshTimes(start + line + "\n");
        EXPECT_EQ(Notice(), "its duration is not understood") << line;
    }
    FreshTimes(start + "RRULE:\nDTEND:\nRDATE:20070306T140000Z\n");
    EXPECT_EQ(Notice(), "");
}

TEST_F(OccurrencesTest, SayThatATextIsTooLongForItsItem)
{
    const std::string start = "DTSTART:20070305T140000Z\n";
    FreshTimes(start + "SUMMARY:" + std::string(16000, 'x') + "\nCATEGORIES:" + std::string(1000, 'x') + "\n");
    EXPECT_EQ(Notice(), "");
    FreshTimes(start + "SUMMARY:" + std::string(16001, 'x') + "\n");
    EXPECT_EQ(Notice(), "a text of 16001 bytes was cut after 16000");
    FreshTimes(start + "CATEGORIES:" + std::string(1001, 'x') + "\n");
    EXPECT_EQ(Notice(), "a text of 1001 bytes was cut after 1000");
}

TEST_F(OccurrencesTest, TakeARuleWithPartsThatNobodyKnows)
{
    EXPECT_EQ(Times("DTSTART:20070305T140000Z\nRRULE:FREQ=DAILY;X-EXTRA=1;COUNT=2\n"),
              "2007-03-05T14:00:00Z|2007-03-06T14:00:00Z");
}

TEST_F(OccurrencesTest, AreTheSameOnesWheneverTheFileIsReadThatDay)
{
    ReadEvent("DTSTART:19990101T140000Z\nRRULE:FREQ=DAILY\n");
    clock_.Advance(8 * 3600 * 1000);
    ReadEvent("DTSTART:19990101T140000Z\nRRULE:FREQ=DAILY\n");
    EXPECT_EQ(Counts(report_), "added 0 updated 0 unchanged 1 removed 0 rejected 0");
    clock_.Advance(24 * 3600 * 1000);
    EXPECT_EQ(Times("DTSTART:19990101T140000Z\nRRULE:FREQ=DAILY\n").substr(0, 20), "2007-03-06T14:00:00Z");
    EXPECT_EQ(Counts(report_), "added 0 updated 1 unchanged 0 removed 0 rejected 0");
}

}  // namespace
}  // namespace pavex
