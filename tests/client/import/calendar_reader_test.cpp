// tests/client/import/calendar_reader_test.cpp: which lines of a file are which entry.
#include "client/import/calendar_reader.h"

#include "tests/client/import/calendar_fixture.h"

namespace pavex {
namespace {

class CalendarReaderTest : public CalendarTest {
protected:
    std::vector<std::string> Rejections() const
    {
        std::vector<std::string> lines;
        for (const RejectedEntry& entry : report_.rejected)
            lines.push_back(entry.where.substr(entry.where.rfind('/') + 1) + ": " + entry.reason);
        return lines;
    }
};

using Lines = std::vector<std::string>;

std::string Entry(const std::string& kind, const std::string& uid, const std::string& lines)
{
    return "BEGIN:" + kind + "\nUID:" + uid + "\n" + lines + "END:" + kind + "\n";
}

TEST_F(CalendarReaderTest, TakesEachKindOfEntryAndLeavesTheRest)
{
    Read("BEGIN:VFREEBUSY\nUID:f\nEND:VFREEBUSY\n" + Entry("VEVENT", "e", "DTSTART:20070305T140000Z\n") +
         Entry("VTODO", "t", "") + Entry("VJOURNAL", "j", ""));
    std::vector<std::string> forms;
    for (NoteText& note : Notes())
        forms.push_back(note["Form"]);
    EXPECT_EQ(forms, (Lines{"Appointment", "Task", "JournalEntry"}));
    EXPECT_EQ(Rejections(),
              (Lines{"c.ics:line 3: says when somebody is free or busy, which is no entry of a calendar"}));
}

TEST_F(CalendarReaderTest, ReportsABadEntryWithItsLineAndTakesTheOthers)
{
    Read(Entry("VEVENT", "bad", "SUMMARY:no start\n") + Entry("VEVENT", "worse", "DTSTART:20071399T990000Z\n") +
         Entry("VEVENT", "good", "DTSTART:20070305T140000Z\nSUMMARY:fine\n"));
    EXPECT_EQ(Subjects(), (Lines{"fine"}));
    EXPECT_EQ(Rejections(),
              (Lines{"c.ics:line 3: has no valid start (DTSTART)", "c.ics:line 7: has no valid start (DTSTART)"}));
}

TEST_F(CalendarReaderTest, ReportsAnEntryThatIsNotEndedAndReadsOn)
{
    Read("BEGIN:VEVENT\nUID:open\nDTSTART:20070305T140000Z\n" +
         Entry("VEVENT", "good", "DTSTART:20070305T140000Z\nSUMMARY:fine\n") + "BEGIN:VTODO\nUID:last\n");
    EXPECT_EQ(Subjects(), (Lines{"fine"}));
    EXPECT_EQ(Rejections(), (Lines{"c.ics:line 3: is not ended: its END line is missing",
                                   "c.ics:line 11: is not ended: its END line is missing"}));
}

TEST_F(CalendarReaderTest, PrunesNothingOfWhatIsOnlyDamaged)
{
    const std::string good = "DTSTART:20070305T140000Z\n";
    const std::string whole = Entry("VEVENT", "a", good) + Entry("VEVENT", "b", good) + Entry("VEVENT", "c", good);
    Read(whole);
    options_.prune = true;
    const std::pair<std::string, size_t> damages[] = {
        {Calendar(Entry("VEVENT", "a", "DTSTART:garbage\n") + Entry("VEVENT", "b", good) + Entry("VEVENT", "c", good)),
         1},
        {"BEGIN:VCALENDAR\n" + Entry("VEVENT", "a", good), 1},
        {"BEGIN:VCALENDAR\n" + Entry("VEVENT", "a", good) + "BEGIN:VEVENT\nUID:b\n", 1},
        {"<html>503 Service Unavailable</html>\n", 1},
    };
    for (const auto& [file, rejected] : damages) {
        Write("c.ics", file);
        report_ = Run({"c.ics"});
        EXPECT_EQ(report_.rejected.size(), rejected) << file;
        EXPECT_EQ(Notes().size(), 3U) << file;
    }
    Write("c.ics", Calendar(Entry("VEVENT", "a", good)));
    EXPECT_EQ(Counts(Run({"c.ics"})), "added 0 updated 0 unchanged 1 removed 2 rejected 0");
}

TEST_F(CalendarReaderTest, KeepsASeriesWhenOneOfItsOccurrencesComesAlone)
{
    const std::string series = "DTSTART:20070305T140000Z\nRRULE:FREQ=DAILY;COUNT=4\nSUMMARY:series\n";
    Read(Entry("VEVENT", "a", series));
    Read(Entry("VEVENT", "a", "SEQUENCE:1\nRECURRENCE-ID:20070306T140000Z\nDTSTART:20070306T160000Z\nSUMMARY:moved\n"));
    EXPECT_EQ(Subjects(), (Lines{"series", "moved"}));
    Read(Entry("VEVENT", "a",
               "SEQUENCE:2\nRECURRENCE-ID:20070307T140000Z\nDTSTART:20070307T140000Z\nSTATUS:CANCELLED\n"));
    EXPECT_EQ(Subjects(), (Lines{"series", "moved"}));
    EXPECT_EQ(Rejections(), (Lines{"c.ics:line 3: only cancels an occurrence of an entry that is not in this file"}));
    EXPECT_EQ(Notes().at(0).at("CalendarDateTime").size(), 4 * 21U - 1);
}

TEST_F(CalendarReaderTest, TakesTheVersionOfASeriesFromTheSeries)
{
    const std::string series = "DTSTART:20070305T140000Z\nRRULE:FREQ=DAILY;COUNT=4\n";
    const std::string moved = "RECURRENCE-ID:20070306T140000Z\nDTSTART:20070306T160000Z\n";
    Read(Entry("VEVENT", "a", "SEQUENCE:5\nSUMMARY:fifth\n" + series) + Entry("VEVENT", "a", moved));
    Read(Entry("VEVENT", "a", "SEQUENCE:3\nSUMMARY:third\n" + series));
    EXPECT_EQ(Subjects(), (Lines{"fifth"}));
    Read(Entry("VEVENT", "a", "SEQUENCE:5\nSUMMARY:fifth\n" + series) + Entry("VEVENT", "a", "SEQUENCE:9\n" + moved));
    Read(Entry("VEVENT", "a", "SEQUENCE:5\nSUMMARY:without the change\n" + series));
    EXPECT_EQ(Subjects(), (Lines{"without the change"}));
}

TEST_F(CalendarReaderTest, ReportsASecondEntryOfOneIdUnlessItSaysTheSame)
{
    const std::string one = Entry("VEVENT", "a", "DTSTART:20070305T140000Z\nSUMMARY:one\n");
    Read(one + Entry("VEVENT", "a", "DTSTART:20070305T140000Z\nDTSTAMP:20070305T140000Z\nSUMMARY:one\n") +
         Entry("VEVENT", "a", "DTSTART:20070305T140000Z\nSUMMARY:two\n"));
    EXPECT_EQ(Subjects(), (Lines{"one"}));
    EXPECT_EQ(Rejections(), (Lines{"c.ics:line 14: has the id (UID) of another entry of this file"}));
}

TEST_F(CalendarReaderTest, TakesTheNewestOfTheVersionsInAFile)
{
    const auto version = [](const std::string& number) {
        return Entry("VEVENT", "a",
                     "DTSTART:20070305T140000Z\nSEQUENCE:" + number + "\nSUMMARY:version " + number + "\n");
    };
    Read(version("1") + version("3") + version("2"));
    EXPECT_EQ(Subjects(), (Lines{"version 3"}));
    EXPECT_TRUE(Rejections().empty());
}

TEST_F(CalendarReaderTest, KnowsAnEntryWithoutAnIdAgainWhateverTheDay)
{
    const std::string endless = "BEGIN:VEVENT\nDTSTART:20000305T140000Z\nRRULE:FREQ=DAILY\nEND:VEVENT\n";
    Read(endless + "BEGIN:VTODO\nDUE:20070306T000000Z\nEND:VTODO\n");
    EXPECT_EQ(Counts(report_), "added 2 updated 0 unchanged 0 removed 0 rejected 0");
    clock_.Advance(48 * 3600 * 1000);
    Read(endless + "BEGIN:VTODO\nDUE:20070306T000000Z\nEND:VTODO\n");
    EXPECT_EQ(Counts(report_), "added 0 updated 2 unchanged 0 removed 0 rejected 0");
}

TEST_F(CalendarReaderTest, LeavesOutAlarmsAlsoOnesThatAreNotEnded)
{
    Read(Entry("VEVENT", "a",
               "DTSTART:20070305T140000Z\nSUMMARY:one\nBEGIN:VALARM\nUID:alarm\nSUMMARY:wake\nEND:VALARM\n") +
         Entry("VEVENT", "b", "DTSTART:20070305T140000Z\nSUMMARY:two\nBEGIN:VALARM\nSUMMARY:wake\n"));
    EXPECT_EQ(Subjects(), (Lines{"one", "two"}));
    EXPECT_TRUE(Rejections().empty());
}

TEST_F(CalendarReaderTest, UndoesFoldsAndTakesEveryLineEnd)
{
    std::string file = Calendar(Event("DTSTART:20070305T140000Z\nSUMMARY:A very lo\n ng subject \xC3\n \xA4\n"));
    for (size_t at = 0; (at = file.find('\n', at)) != std::string::npos; at += 2)
        file.replace(at, 1, "\r\n");
    Write("c.ics", "\xEF\xBB\xBF\r\n" + file);
    EXPECT_EQ(Counts(Run({"c.ics"})), "added 1 updated 0 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(Subjects(), (Lines{"A very long subject \xC3\xA4"}));
}

TEST_F(CalendarReaderTest, ReadsTextOfOlderPrograms)
{
    const NoteText note =
        ReadEvent("DTSTART:20070305T140000Z\nSUMMARY;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:M=FCller=\n"
                  " und S=F6hne\nDESCRIPTION;ENCODING=QUOTED-PRINTABLE:one=0D=0Atwo\nLOCATION:Caf\xE9\n");
    EXPECT_EQ(note.at("Subject"), "M\xC3\xBCller und S\xC3\xB6hne");
    EXPECT_EQ(note.at("Body"), "one\ntwo\n");
    EXPECT_EQ(note.at("Location"), "Caf\xC3\xA9");
}

TEST_F(CalendarReaderTest, UpdatesByTheSameIdAndKeepsTheNewerVersion)
{
    ReadEvent("DTSTART:20070305T140000Z\nSEQUENCE:2\nSUMMARY:second\n");
    ReadEvent("DTSTART:20070305T140000Z\nSEQUENCE:3\nSUMMARY:third\n");
    EXPECT_EQ(Counts(report_), "added 0 updated 1 unchanged 0 removed 0 rejected 0");
    ReadEvent("DTSTART:20070305T140000Z\nSEQUENCE:1\nSUMMARY:first\n");
    EXPECT_EQ(Counts(report_), "added 0 updated 0 unchanged 1 removed 0 rejected 0");
    EXPECT_EQ(Subjects(), (Lines{"third"}));
    ReadEvent("DTSTART:20070305T140000Z\nSEQUENCE:3\nLAST-MODIFIED:20070301T000000Z\nSUMMARY:dated\n");
    ReadEvent("DTSTART:20070305T140000Z\nSEQUENCE:3\nLAST-MODIFIED:20070201T000000Z\nSUMMARY:older\n");
    EXPECT_EQ(Subjects(), (Lines{"dated"}));
}

TEST_F(CalendarReaderTest, WritesNothingWhenOnlyTheTimeOfTheExportChanged)
{
    Read(Event("DTSTART:20070305T140000Z\nDTSTAMP:20070301T000000Z\n") +
         Entry("VTODO", "t", "DTSTAMP:20070301T000000Z\nATTENDEE:mailto:ann@example.org\n"));
    const auto before = Versions();
    clock_.Advance(48 * 3600 * 1000);
    Read(Event("DTSTART:20070305T140000Z\nDTSTAMP:20070303T000000Z\n") +
         Entry("VTODO", "t", "DTSTAMP:20070303T000000Z\nATTENDEE:mailto:ann@example.org\n"));
    EXPECT_EQ(Versions(), before);
    Read(Event("DTSTART:20070305T140000Z\nLAST-MODIFIED:20070303T000000Z\n"));
    EXPECT_EQ(Versions(), before);
}

TEST_F(CalendarReaderTest, TellsEntriesWithoutAnIdApartByWhatTheySay)
{
    const std::string one = "BEGIN:VEVENT\nDTSTART:20070305T140000Z\nSUMMARY:one\nEND:VEVENT\n";
    const std::string two = "BEGIN:VEVENT\nDTSTART:20070305T140000Z\nSUMMARY:two\nEND:VEVENT\n";
    Read(one + two + one);
    EXPECT_EQ(Counts(report_), "added 2 updated 0 unchanged 1 removed 0 rejected 0");
}

TEST_F(CalendarReaderTest, ReadsSingleEntriesThatAreNamedAsCalendars)
{
    Write("c.ics", Event("DTSTART:20070305T140000Z\nSUMMARY:bare\n"));
    Write("c.txt", "a preface\nBEGIN:VEVENT\n");
    Write("d.ics", "a preface\n" + Calendar(Entry("VTODO", "t", "SUMMARY:task\n")));
    EXPECT_EQ(Counts(Run({"c.ics", "d.ics"})), "added 2 updated 0 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(Subjects(), (Lines{"bare", "task"}));
}

TEST_F(CalendarReaderTest, PassesOverAnEmptyCalendar)
{
    Write("c.ics", Calendar(""));
    EXPECT_EQ(Counts(Run({"c.ics"})), "added 0 updated 0 unchanged 0 removed 0 rejected 0");
}

TEST_F(CalendarReaderTest, LeavesOutAttachedFilesOfAnySize)
{
    const NoteText note = ReadEvent("DTSTART:20070305T140000Z\nSUMMARY:small\nATTACH;ENCODING=BASE64;VALUE=BINARY:" +
                                    std::string(3000000, 'A') + "\nLOCATION:Room 1\n");
    EXPECT_EQ(note.at("Location"), "Room 1");
}

TEST_F(CalendarReaderTest, BringsInAThousandEntriesOfOneFile)
{
    std::string lines;
    for (int i = 0; i < 1000; ++i)
        lines += Entry("VEVENT", "id" + std::to_string(i), "DTSTART:20070305T140000Z\n");
    Read(lines);
    EXPECT_EQ(Counts(report_), "added 1000 updated 0 unchanged 0 removed 0 rejected 0");
}

TEST_F(CalendarReaderTest, ReadsACharsetHoweverItsParameterIsWritten)
{
    for (const char* line : {"SUMMARY;charset=KOI8-R:\xE1\xCE\xCE\xC1\n",
                             "SUMMARY;Charset=koi8-r;encoding=quoted-printable:=E1=CE=CE=C1\n"})
        EXPECT_EQ(Read("BEGIN:VEVENT\nDTSTART:20070305T140000Z\n" + std::string(line) + "END:VEVENT\n")["Subject"],
                  "Анна")
            << line;
}

}  // namespace
}  // namespace pavex
