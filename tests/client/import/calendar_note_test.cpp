// tests/client/import/calendar_note_test.cpp: what an entry says, item by item.
#include "client/import/calendar_note.h"

#include "client/store/timedate.h"
#include "tests/client/import/calendar_fixture.h"

namespace pavex {
namespace {

class CalendarNoteTest : public CalendarTest {
protected:
    NoteText ReadTask(const std::string& lines) { return Read("BEGIN:VTODO\nUID:t" + Next() + lines + "END:VTODO\n"); }
    NoteText ReadJournal(const std::string& lines)
    {
        return Read("BEGIN:VJOURNAL\nUID:j" + Next() + lines + "END:VJOURNAL\n");
    }
    std::string End(const std::string& lines)
    {
        return Read("BEGIN:VEVENT\nUID:e" + Next() + lines + "END:VEVENT\n")["EndDateTime"];
    }

private:
    std::string Next() { return std::to_string(++number_) + "\n"; }
    int number_ = 0;
};

TEST_F(CalendarNoteTest, OfAnEventHoldsAllThatTheEntrySays)
{
    const NoteText note = ReadEvent(
        "DTSTART:20070305T140000Z\nDTEND:20070305T150000Z\nSUMMARY:Review\\, part 2\nLOCATION:Room 7\\; east\n"
        "DESCRIPTION:First line\\nSecond line\nCOMMENT:A remark\nURL:https://example.org/review\nCONTACT:Front desk\n"
        "CATEGORIES:Work,Plans\\, big\nCATEGORIES:H\n"
        "ORGANIZER;CN=Ann Lee:mailto:ann@example.org\n"
        "ATTENDEE;CN=\"Roe, Bob\";ROLE=REQ-PARTICIPANT:MAILTO:bob@example.org\nATTENDEE:mailto:cy@example.org\n"
        "ATTENDEE;ROLE=OPT-PARTICIPANT;CN=Dee:mailto:dee@example.org\n"
        "ATTENDEE;ROLE=NON-PARTICIPANT;CN=Eve:mailto:eve@example.org\n");
    EXPECT_EQ(
        note,
        (NoteText{{"Form", "Appointment"},
                  {"Subject", "Review, part 2"},
                  {"CalendarDateTime", "2007-03-05T14:00:00Z"},
                  {"StartDateTime", "2007-03-05T14:00:00Z"},
                  {"EndDateTime", "2007-03-05T15:00:00Z"},
                  {"Chair", "Ann Lee <ann@example.org>"},
                  {"RequiredAttendees", "Roe, Bob <bob@example.org>|cy@example.org"},
                  {"OptionalAttendees", "Dee <dee@example.org>|Eve <eve@example.org>"},
                  {"Location", "Room 7; east"},
                  {"Categories", "Work|Plans, big|H"},
                  {"Body", "First line\nSecond line\nA remark\nContact: Front desk\nhttps://example.org/review\n"}}));
}

TEST_F(CalendarNoteTest, TakesTheAttendingChairWhereNobodyOrganizes)
{
    EXPECT_EQ(ReadEvent("DTSTART:20070305T140000Z\nATTENDEE;ROLE=CHAIR;CN=Ann:mailto:ann@example.org\n")["Chair"],
              "Ann <ann@example.org>");
}

TEST_F(CalendarNoteTest, EndsAsTheEntrySaysInWhicheverWay)
{
    EXPECT_EQ(End("DTSTART:20070305T140000Z\nDURATION:PT1H30M\n"), "2007-03-05T15:30:00Z");
    EXPECT_EQ(End("DTSTART:20070305T140000Z\nDURATION:P1W\n"), "2007-03-12T14:00:00Z");
    EXPECT_EQ(End("DTSTART:20070305T140000Z\nDURATION:P999999999W\n"), "2107-03-06T14:00:00Z");
    EXPECT_EQ(End("DTSTART:20070305T140000Z\nDURATION:PT999999999H\n"), "2107-03-06T14:00:00Z");
    EXPECT_EQ(End("DTSTART;TZID=Europe/Berlin:20070324T140000\nDURATION:P1D\n"), "2007-03-25T12:00:00Z");
    EXPECT_EQ(End("DTSTART;TZID=Europe/Berlin:20070324T140000\nDURATION:PT24H\n"), "2007-03-25T13:00:00Z");
    EXPECT_EQ(End("DTSTART:20070305T140000Z\n"), "2007-03-05T14:00:00Z");
    EXPECT_EQ(End("DTSTART;VALUE=DATE:20070305\n"), "2007-03-06");
    EXPECT_EQ(End("DTSTART;VALUE=DATE:20070305\nDTEND;VALUE=DATE:20070308\n"), "2007-03-08");
}

TEST_F(CalendarNoteTest, LastsNoTimeWhenItsEndLiesBeforeItsStart)
{
    for (const char* end : {"DTEND:20070305T130000Z\n", "DTEND;VALUE=DATE:20070305\n", "DURATION:-PT1H\n"}) {
        EXPECT_EQ(End(std::string("DTSTART:20070305T140000Z\n") + end), "2007-03-05T14:00:00Z");
        ASSERT_EQ(report_.notices.size(), 1U) << end;
        EXPECT_EQ(report_.notices[0].reason, "its end lies before its start and was not taken");
    }
}

TEST_F(CalendarNoteTest, SaysHowManyOfTooManyPeopleAndCategoriesItHolds)
{
    std::string lines = "DTSTART:20070305T140000Z\n";
    for (int i = 0; i < 1001; ++i) {
        const std::string number = std::to_string(i);
        lines += "ATTENDEE:mailto:a" + number + "@example.org\nATTENDEE;ROLE=OPT-PARTICIPANT:mailto:b" + number +
                 "@example.org\nCATEGORIES:c" + number + "\n";
    }
    const NoteText note = ReadEvent(lines);
    EXPECT_TRUE(note.at("RequiredAttendees").ends_with("|a999@example.org"));
    ASSERT_EQ(report_.notices.size(), 1U);
    EXPECT_EQ(report_.notices[0].reason, "only 1000 of its attendees were taken; only 1000 of its optional attendees "
                                         "were taken; only 1000 of its categories were taken");
}

TEST_F(CalendarNoteTest, HoldsTheFirstMegabyteOfALongerText)
{
    const std::string plain = "DESCRIPTION:x";  // that the limit falls within a character
    std::string text;
    std::string encoded;
    for (int i = 0; i < 600000; ++i) {
        text += "ä";
        encoded += i % 20 == 19 ? "=C3=A4=\n" : "=C3=A4";
    }
    for (const std::string& line : {plain + text, "DESCRIPTION:" + text, "DESCRIPTION;QUOTED-PRINTABLE:" + encoded,
                                    "DESCRIPTION;QUOTED-PRINTABLE:xy" + encoded}) {
        const std::string body = Read("BEGIN:VEVENT\nUID:" + std::to_string(line.size()) +
                                      "\nDTSTART:20070305T140000Z\n" + line + "\nEND:VEVENT\n")["Body"];
        EXPECT_GT(body.size(), 340000U);
        EXPECT_TRUE(body.ends_with("ä\n")) << body.substr(body.size() - 9);
        EXPECT_EQ(body.find("\xC3\x83"), body.npos) << "no charset was guessed";
        ASSERT_EQ(report_.notices.size(), 1U);
        EXPECT_EQ(report_.notices[0].reason, "a text of more than 1 MB was shortened");
    }
}

TEST_F(CalendarNoteTest, ReadsHtmlWhereThereIsNoPlainText)
{
    EXPECT_EQ(ReadEvent("DTSTART:20070305T140000Z\nX-ALT-DESC;FMTTYPE=text/html:<p>Bring <b>cake</b></p>\n")["Body"],
              "Bring cake\n");
}

TEST_F(CalendarNoteTest, KeepsTheTimesOfTheEntry)
{
    ReadEvent("DTSTART:20070305T140000Z\nCREATED:20070101T080000Z\nLAST-MODIFIED:20070201T093000Z\n");
    const std::unique_ptr<Database> database = OpenMail();
    Note note;
    ASSERT_EQ(database->Get(Versions().at(0).first, &note), 0);
    EXPECT_EQ(IsoFromTime(note.modified), "2007-02-01T09:30:00Z");
    EXPECT_EQ(IsoFromTime(note.created), "2007-01-01T08:00:00Z");
}

TEST_F(CalendarNoteTest, OfATaskHoldsItsDatesPeopleAndStanding)
{
    const NoteText note = ReadTask("DTSTART:20070301T080000Z\nDUE:20070401T080000Z\nSUMMARY:Paint\nPRIORITY:2\n"
                                   "ORGANIZER:mailto:ann@example.org\nCATEGORIES:House\nDESCRIPTION:The door\n");
    EXPECT_EQ(note, (NoteText{{"Form", "Task"},
                              {"Subject", "Paint"},
                              {"CalendarDateTime", "2007-03-01T08:00:00Z"},
                              {"StartDateTime", "2007-03-01T08:00:00Z"},
                              {"DueDateTime", "2007-04-01T08:00:00Z"},
                              {"TaskType", "1"},
                              {"DueState", "1"},
                              {"Importance", "1"},
                              {"Chair", "ann@example.org"},
                              {"Categories", "House"},
                              {"Body", "The door\n"}}));
}

TEST_F(CalendarNoteTest, OfATaskSaysHowItStandsToday)
{
    struct Row {
        const char* lines;
        const char* state;
    };
    constexpr Row kRows[] = {
        {"", "1"},
        {"STATUS:NEEDS-ACTION\nDUE:20070305T110000Z\n", "0"},
        {"STATUS:IN-PROCESS\nDUE:20070305T130000Z\n", "1"},
        {"DUE;VALUE=DATE:20070305\n", "1"},
        {"DUE;VALUE=DATE:20070304\n", "0"},
        {"DTSTART:20070305T130000Z\n", "2"},
        {"DTSTART:20070305T130000Z\nSTATUS:IN-PROCESS\n", "1"},
        {"DTSTART:20070101T000000Z\nDURATION:P1D\n", "0"},
        {"STATUS:CANCELLED\nDUE:20070101T000000Z\n", "8"},
        {"STATUS:COMPLETED\n", "9"},
        {"COMPLETED:20070304T100000Z\n", "9"},
        {"PERCENT-COMPLETE:100\n", "9"},
        {"PERCENT-COMPLETE:99\n", "1"},
    };
    for (const Row& row : kRows)
        EXPECT_EQ(ReadTask(row.lines)["DueState"], row.state) << row.lines;
}

TEST_F(CalendarNoteTest, OfATaskNumbersImportanceInThreeSteps)
{
    const std::pair<const char*, const char*> rows[] = {{"1", "1"}, {"4", "1"}, {"5", "2"}, {"6", "3"}, {"9", "3"}};
    for (const auto& [priority, importance] : rows)
        EXPECT_EQ(ReadTask(std::string("PRIORITY:") + priority + "\n")["Importance"], importance) << priority;
    EXPECT_FALSE(ReadTask("PRIORITY:0\n").contains("Importance"));
    EXPECT_FALSE(ReadTask("").contains("Importance"));
}

TEST_F(CalendarNoteTest, OfATaskIsPostedOnceOthersTakePart)
{
    const NoteText note = ReadTask("CREATED:20070201T080000Z\nATTENDEE;CN=Bob:mailto:bob@example.org\n");
    EXPECT_EQ(note.at("TaskType"), "2");
    EXPECT_EQ(note.at("PostedDate"), "2007-02-01T08:00:00Z");
    EXPECT_FALSE(ReadTask("").contains("PostedDate"));
}

TEST_F(CalendarNoteTest, OfATaskAlwaysHasAPlaceInTheCalendar)
{
    EXPECT_EQ(ReadTask("DUE:20070401T080000Z\n")["CalendarDateTime"], "2007-04-01T08:00:00Z");
    EXPECT_EQ(ReadTask("COMPLETED:20070302T080000Z\n")["CalendarDateTime"], "2007-03-02T08:00:00Z");
    EXPECT_EQ(ReadTask("CREATED:20070201T080000Z\nDTSTAMP:20070202T080000Z\n")["CalendarDateTime"],
              "2007-02-01T08:00:00Z");
    EXPECT_EQ(ReadTask("DTSTAMP:20070202T080000Z\n")["CalendarDateTime"], "2007-02-02T08:00:00Z");
    EXPECT_EQ(ReadTask("")["CalendarDateTime"], "2007-03-05");
    EXPECT_EQ(ReadTask("COMPLETED:20070302T080000Z\n")["CompletedDateTime"], "2007-03-02T08:00:00Z");
}

TEST_F(CalendarNoteTest, OfARepeatedTaskListsItsOccurrences)
{
    EXPECT_EQ(
        ReadTask("DTSTART:20070301T080000Z\nDUE:20070301T090000Z\nRRULE:FREQ=WEEKLY;COUNT=2\n")["CalendarDateTime"],
        "2007-03-01T08:00:00Z|2007-03-08T08:00:00Z");
}

TEST_F(CalendarNoteTest, OfAJournalEntryHoldsItsDayAndText)
{
    EXPECT_EQ(ReadJournal(
                  "DTSTART;VALUE=DATE:20070304\nSUMMARY:Sunday\nCATEGORIES:Diary\nDESCRIPTION:Rain\nDESCRIPTION:Tea\n"),
              (NoteText{{"Form", "JournalEntry"},
                        {"TimeCreated", "2007-03-04"},
                        {"Subject", "Sunday"},
                        {"Categories", "Diary"},
                        {"Body", "Rain\nTea\n"}}));
    EXPECT_EQ(ReadJournal("CREATED:20070201T080000Z\n")["TimeCreated"], "2007-02-01T08:00:00Z");
    EXPECT_FALSE(ReadJournal("").contains("TimeCreated"));
}

}  // namespace
}  // namespace pavex
