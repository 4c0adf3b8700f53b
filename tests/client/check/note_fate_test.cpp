// tests/client/check/note_fate_test.cpp: what becomes of a note at its indexing.
// The program's own tests hold the same against what the add-in does.
#include "client/check/note_fate.h"

#include "client/store/note_link.h"
#include "tests/client/store/store_fixture.h"

namespace pavex {
namespace {

using Items = std::vector<Item>;

const TIMEDATE kTime = TimeFromUnix(1'200'000'000);
const TIMEDATE kLater = TimeFromUnix(1'200'003'600);

class NoteFateTest : public StoreTest {
protected:
    NoteFate FateOf(const Items& items, bool isHistory = false)
    {
        TestDatabase data(NewPath());
        const uint32_t id = data.AddNote(items);
        OpenedDatabase opened(data.Path());
        OpenedNote note(opened, id);
        return FateOfNote(note, isHistory, switches_);
    }
    // The kind's name when the note is indexed, else the fate's.
    std::string NameOf(const Items& items, bool isHistory = false)
    {
        const NoteFate fate = FateOf(items, isHistory);
        return fate.fate == Fate::kIndexed ? fate.kind->name : TextOfFate(fate.fate).name;
    }

    IndexSwitches switches_;
};

Items Entry(const Item& start, const Item& end)
{
    return {TextItem("Form", "appointment"), start, end, TimeListItem("CalendarDateTime", {kTime})};
}

TEST_F(NoteFateTest, HasARowForEachFate)
{
    for (int i = 0; i <= static_cast<int>(Fate::kLeadsNowhere); ++i)
        EXPECT_EQ(static_cast<int>(TextOfFate(static_cast<Fate>(i)).fate), i);
}

TEST_F(NoteFateTest, GoesByTheWholeFormWithoutRegardToCase)
{
    EXPECT_EQ(NameOf({TextItem("Form", "PERSON")}), "contact");
    EXPECT_EQ(NameOf({TextItem("Form", "CleanSheet")}), "journal");
    EXPECT_EQ(NameOf({TextItem("Form", " Person")}), "note");
    EXPECT_EQ(NameOf({TextItem("Form", "Persons")}), "note");
    EXPECT_EQ(NameOf({}), "note");
}

TEST_F(NoteFateTest, KnowsMailWithoutAFormByItsItems)
{
    const Item posted = TimeItem("PostedDate", kTime);
    EXPECT_EQ(NameOf({posted, TextItem("From", "a"), TextItem("Subject", "b")}), "mail");
    EXPECT_EQ(NameOf({posted, TextItem("From", "a")}), "note");
    EXPECT_EQ(NameOf({TextItem("Form", "MainTopic"), posted, TextItem("From", "a"), TextItem("ReplyTo", "b")}), "mail");
    switches_.discussion = true;
    EXPECT_EQ(NameOf({TextItem("Form", "MainTopic"), posted, TextItem("From", "a"), TextItem("ReplyTo", "b")}),
              "discussion");
}

TEST_F(NoteFateTest, LeavesOutDraftsAndChatsAsTheSwitchesSay)
{
    const Items draft = {TextItem("Form", "Memo")};
    const Items chat = {TextItem("Form", "Memo"), TextItem("$IMTranscript", "1")};
    EXPECT_EQ(NameOf(draft), "draft");
    EXPECT_EQ(NameOf(chat), "mail");
    switches_.drafts = true;
    switches_.chats = false;
    EXPECT_EQ(NameOf(draft), "mail");
    EXPECT_EQ(NameOf(chat), "chat");
    EXPECT_STREQ(FateOf(chat).kind->name, "mail");
}

TEST_F(NoteFateTest, LeavesOutEntriesAndTasksWithoutTheirDays)
{
    EXPECT_EQ(NameOf(Entry(TimeItem("StartDateTime", kTime), TimeItem("EndDateTime", kLater))), "calendar");
    EXPECT_EQ(NameOf(Entry(TimeItem("StartDateTime", kTime), TimeItem("EndDateTime", kTime))), "calendar");
    EXPECT_EQ(NameOf(Entry(TimeItem("StartDateTime", kLater), TimeItem("EndDateTime", kTime))), "no-dates");
    EXPECT_EQ(NameOf(Entry(TimeItem("StartDateTime", kTime), TextItem("EndDateTime", "late"))), "no-dates");
    EXPECT_EQ(NameOf(Entry(TimeItem("StartDateTime", kTime), TextItem("Other", ""))), "no-dates");
    EXPECT_EQ(NameOf({TextItem("Form", "Appointment")}), "no-dates");
    EXPECT_EQ(NameOf({TextItem("Form", "Task")}), "no-day");
    EXPECT_EQ(NameOf({TextItem("Form", "Task"), TextItem("CalendarDateTime", "")}), "task");
}

TEST_F(NoteFateTest, LeavesOutOtherNotesAsTheSwitchSays)
{
    switches_.otherNotes = false;
    EXPECT_EQ(NameOf({TextItem("Form", "Quotation")}), "other-notes");
    EXPECT_EQ(NameOf({TextItem("Form", "Person")}), "contact");
}

TEST_F(NoteFateTest, TakesEntriesOfTheHistoryThatLeadToANote)
{
    const NOTELINK link = *LinkFromUrl("Pavex:///8025000000000001//0123456789ABCDEF8025000000000002");
    Items entry = HistoryNote(link, "Zebra").items;
    EXPECT_EQ(NameOf(entry, true), "history");
    EXPECT_EQ(NameOf(entry, false), "note");
    NOTELINK view = link;
    view.note = {};
    EXPECT_EQ(NameOf(HistoryNote(view, "Zebra").items, true), "leads-nowhere");
    entry[2] = TextItem("URL", "http://example.org");
    EXPECT_EQ(NameOf(entry, true), "leads-nowhere");
    entry.pop_back();
    EXPECT_EQ(NameOf(entry, true), "no-history-entry");
    EXPECT_EQ(NameOf({TextItem("Form", "Person")}, true), "no-history-entry");
    switches_.history = false;
    EXPECT_EQ(NameOf(entry, true), "history-off");
}

TEST_F(NoteFateTest, ReadsTheSwitchesOfTheIniFile)
{
    EXPECT_TRUE(SetVariable("GDSNoIndexChats", "1"));
    EXPECT_TRUE(SetVariable("GDSIndexDrafts", "1"));
    const IndexSwitches switches = ReadIndexSwitches();
    EXPECT_FALSE(switches.chats);
    EXPECT_TRUE(switches.drafts);
    EXPECT_TRUE(switches.history);
    EXPECT_TRUE(switches.otherNotes);
    EXPECT_TRUE(switches.deletions);
    EXPECT_FALSE(switches.discussion);
}

}  // namespace
}  // namespace pavex
