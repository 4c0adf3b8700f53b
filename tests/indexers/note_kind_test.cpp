// tests/indexers/note_kind_test.cpp: what all kinds have in common: the order of their properties, and what
// becomes of a note when one of them fails, when there is no note, or when it has no time.
#include "indexers/note_kind.h"

#include <algorithm>

#include "indexers/calendar.h"
#include "indexers/contact.h"
#include "indexers/discussion.h"
#include "indexers/generic.h"
#include "indexers/history.h"
#include "indexers/journal.h"
#include "indexers/mail.h"
#include "indexers/task.h"
#include "settings/settings.h"
#include "tests/indexers/indexer_fixture.h"
#include "tests/indexers/property_faults.h"
#include "tests/support/fault_plan.h"

namespace {

using Strings = std::vector<std::string>;

struct KindCase {
    const char* name;
    Indexer indexer;
    const char* extension;
    Strings keys;                  // of a note with every item below, in order
    Strings unchecked;             // whose failure does not count
    const char* always = nullptr;  // added whatever became of what follows the time
};

void PrintTo(const KindCase& kind, std::ostream* out)
{
    *out << kind.name;
}

// One note that every indexer finds all of its items in.
std::vector<pavex::Item> NoteForAll()
{
    pavex::RichTextBuilder link;
    link.AddLink({{{1, 2}}, {{{7, 7}}, {{7, 7}}}, {{{3, 4}}, {{5, 6}}}, 0}, "there");
    std::vector<pavex::Item> items = {
        TimeItem("PostedDate", "2007-03-01T10:00:00Z"),
        TimesItem("CalendarDateTime", {"2007-03-11T10:00:00Z", "2007-03-12T10:00:00Z"}),
        TimeItem("StartDateTime", "2007-03-11T10:00:00Z"),
        TimeItem("EndDateTime", "2007-03-11T11:00:00Z"),
        TimeItem("DueDateTime", "2007-03-11T11:00:00Z"),
        TimeItem("CompletedDateTime", "2007-03-11T11:00:00Z"),
        TimeItem("TimeCreated", "2007-03-11T11:00:00Z"),
        TimeItem("Birthday", "1980-02-29"),
        TimeItem("Anniversary", "2001-06-15"),
        NumberItem("Importance", 1),
        pavex::RichTextItem("URL", link.Records()),
        pavex::FormulaItem("$WindowTitle", "Subject"),
        TextItem("MiscLabel1", "onlinename"),
        TextItem("MiscLabel2", "nickname"),
        TextItem("MiscLabel3", "homeurl"),
        BodyItem({"text"}),
    };
    for (const char* name : {"From",
                             "SendTo",
                             "Subject",
                             "CopyTo",
                             "BlindCopyTo",
                             "ReplyTo",
                             "Chair",
                             "RequiredAttendees",
                             "Location",
                             "Categories",
                             "Title",
                             "OfficeCity",
                             "City",
                             "OfficePhoneNumber",
                             "CellPhoneNumber",
                             "PhoneNumber_6",
                             "PhoneNumber",
                             "OfficeFAXPhoneNumber",
                             "HomeFAXPhoneNumber",
                             "FullName",
                             "Assistant",
                             "WebSite",
                             "Children",
                             "CompanyName",
                             "Country",
                             "Department",
                             "MailAddress",
                             "Spouse",
                             "JobTitle",
                             "Manager",
                             "MiscPhone1",
                             "MiscPhone2",
                             "MiscPhone3",
                             "InternetAddress"})
        items.push_back(TextItem(name, name));
    return items;
}

constexpr const char* kUrl = "com.quorvex.pavex.uri";
constexpr const char* kContent = "com.quorvex.pavex.content";
constexpr const char* kModifiedKey = "last_modified_time";
constexpr const char* kContentUrlKey = "com_quorvex_morvane_pavex_history_content_url";

const KindCase kKinds[] = {
    {"mail",
     IndexMailNote,
     "vPavexMessage",
     {"received", kContent, kUrl, "from", "to", "subject", "cc", "bcc", "replyto"},
     {}},
    {"calendar",
     IndexCalendarNote,
     "vPavexCalendar",
     {kUrl, kModifiedKey, "start_date", "end_date", "duration", "recurrence_pattern", "title", kContent, "organizer",
      "attendees", "location", "categories"},
     {kUrl}},
    {"task",
     IndexTaskNote,
     "vPavexTask",
     {kModifiedKey, kContent, kUrl, "start_date", "due_date", "recurrence_pattern", "title", "categories", "owner",
      "status", "date_completed", "importance"},
     {"date_completed", "importance"}},
    {"contact",
     IndexContactNote,
     "vPavexContact",
     {kModifiedKey,
      kUrl,
      kContent,
      "~business_address",
      "~home_address",
      "~business_phone",
      "~company_phone",
      "~mobile_phone",
      "~pager",
      "~home_phone",
      "~business_fax",
      "~home_fax",
      "~display_name",
      "title",
      "~assistant",
      "~birthday",
      "~business_home_page",
      "categories",
      "~children_names",
      "~company_name",
      "~country",
      "~department",
      "~email1",
      "~spouse",
      "~job_title",
      "~manager_name",
      "~office_location",
      "~wedding_anniversary",
      "~primary_phone",
      "~primary_fax",
      "~im_address",
      "~nickname",
      "~personal_home_page",
      "~email2"},
     {}},
    {"journal",
     IndexJournalNote,
     "vPavexJournal",
     {kModifiedKey, kContent, kUrl, "title", "categories", "start_time"},
     {}},
    {"discussion",
     IndexDiscussionNote,
     "vPavexDiscussion",
     {"message_time", kContent, kUrl, "title", "discussion_authors"},
     {"discussion_authors"},
     "discussion_authors"},
    {"history", IndexHistoryNote, "vPavexHistory", {kModifiedKey, kUrl, kContentUrlKey, "title"}, {}},
    // The body's text and then the items': the second is a value too many for its key.
    {"generic", IndexGenericNote, "vPavexNote", {kModifiedKey, kContent, kContent, kUrl, "title"}, {}},
};

std::string FullKey(const std::string& key)
{
    return key[0] == '~' ? "com_quorvex_morvane_pavex_" + key.substr(1) : key;
}

// The properties that are asked for when the one at `failing` is refused.
Strings KeysAfterFailure(const KindCase& kind, size_t failing, bool unchecked)
{
    Strings keys;
    for (size_t i = 0; i < kind.keys.size(); ++i)
        if (unchecked || i <= failing || (failing > 0 && kind.always != nullptr && kind.keys[i] == kind.always))
            keys.push_back(FullKey(kind.keys[i]));
    return keys;
}

class EveryKind : public IndexerTest, public testing::WithParamInterface<KindCase> {
protected:
    EveryKind()
    {
        // A task shows the pairs of a calendar entry before it.
        StartEndTimes1[0] = StartEndTimes1[1] = {100, 200};
    }
};

TEST_P(EveryKind, AddsItsPropertiesInOrder)
{
    const uint32_t id = Put(NoteForAll());
    Strings expected;
    for (const std::string& key : GetParam().keys)
        expected.push_back(FullKey(key));
    const PropertyFault none(0);
    EXPECT_TRUE(Index(id, GetParam().indexer));
    EXPECT_EQ(none.Keys(), expected);
    EXPECT_EQ(Extension(id), GetParam().extension);
}

TEST_P(EveryKind, AFailingPropertyLeavesNoFileUnlessItIsNotChecked)
{
    bIniDebug = 1;
    for (size_t i = 0; i < GetParam().keys.size(); ++i) {
        const std::string& key = GetParam().keys[i];
        // The text of a body is added without looking at what came of it.
        const bool unchecked =
            key == kContent || std::ranges::find(GetParam().unchecked, key) != GetParam().unchecked.end();
        SCOPED_TRACE(key);
        const uint32_t id = Put(NoteForAll());
        TakeLog();
        const PropertyFault fault(static_cast<int>(i) + 1);
        EXPECT_EQ(Index(id, GetParam().indexer), unchecked);
        EXPECT_EQ(fault.Keys(), KeysAfterFailure(GetParam(), i, unchecked));
        EXPECT_EQ(fault.Sent(), unchecked);
        EXPECT_EQ(context_.lastStatus, 0);
        EXPECT_EQ(context_.blankResult, unchecked ? 0u : static_cast<uint32_t>(-7));
        // What is sent without its URL has no place to go.
        EXPECT_EQ(Extension(id), unchecked && key != kUrl ? GetParam().extension : "");
        const Strings log = TakeLog();
        // Dates are logged by the indexers, texts by the helper that adds them; URLs are not.
        const std::string entry =
            std::string("127 ") + (FullKey(key) == "due_date" ? "end_date" : FullKey(key)) + " -7";
        if (!unchecked && key != kUrl) {
            EXPECT_EQ(log, Strings{entry});
        }
    }
}

TEST_P(EveryKind, AnEventThatIsNotSentIsAnError)
{
    bIniDebug = 1;
    const uint32_t id = Put(NoteForAll());
    const PropertyFault fault(0, true);
    EXPECT_FALSE(Index(id, GetParam().indexer));
    EXPECT_EQ(context_.lastStatus, 0);
    EXPECT_EQ(context_.blankResult, static_cast<uint32_t>(-7));
    EXPECT_EQ(TakeLog(), Strings{"126 -7"});
    EXPECT_EQ(Extension(id), "");
}

TEST_P(EveryKind, LogsNothingWithoutDebugging)
{
    const uint32_t id = Put(NoteForAll());
    {
        const PropertyFault fault(0, true);
        EXPECT_FALSE(Index(id, GetParam().indexer));
    }
    {
        const PropertyFault fault(3);
        static_cast<void>(Index(id, GetParam().indexer));
    }
    context_ = {};
    EXPECT_FALSE(GetParam().indexer(0, &context_));
    EXPECT_EQ(TakeLog(), Strings{});
}

TEST_P(EveryKind, RefusesTheZeroNote)
{
    bIniDebug = 1;
    context_ = {};
    context_.blankResult = 17;
    EXPECT_FALSE(GetParam().indexer(0, &context_));
    EXPECT_EQ(context_.lastStatus, 551);
    EXPECT_EQ(context_.blankResult, 17u);
    EXPECT_EQ(TakeLog(), Strings{"121"});
}

TEST_P(EveryKind, ANoteWithoutATimeIsRemoved)
{
    auto items = NoteForAll();
    std::erase_if(items, [](const pavex::Item& item) { return item.name == "PostedDate"; });
    SetIndexingDrafts(true);
    const uint32_t id = Put(items);
    ASSERT_TRUE(Index(id, GetParam().indexer));
    ASSERT_EQ(Extension(id), GetParam().extension);
    {
        const NoteTimesFault fault;
        EXPECT_TRUE(Index(id, GetParam().indexer));
    }
    EXPECT_EQ(context_.lastStatus, 549);
    EXPECT_EQ(context_.blankResult, 0u);
    EXPECT_EQ(Extension(id), "");
}

TEST_P(EveryKind, ARemovalThatFailsIsAnError)
{
    auto items = NoteForAll();
    std::erase_if(items, [](const pavex::Item& item) { return item.name == "PostedDate"; });
    SetIndexingDrafts(true);
    const uint32_t id = Put(items);
    ASSERT_TRUE(Index(id, GetParam().indexer));
    {
        const NoteTimesFault times;
        const NamedFault fault("VLTDbGetNoteInfo");
        EXPECT_FALSE(Index(id, GetParam().indexer));
    }
    EXPECT_EQ(context_.lastStatus, 549);
    EXPECT_EQ(Extension(id), GetParam().extension);
}

class NoteKindSteps : public IndexerTest {
protected:
    // Indexes a note as one of this type whose steps add three keys, the second with the result.
    bool IndexSteps(SearchEngineEventType type, uint32_t id)
    {
        static constexpr PropertyStep kSteps[] = {{AddKey, "first"}, {AddKey, "second"}, {AddKey, "third"}};
        const NoteKind kind = {type, [](IndexJob&) { return true; }, kSteps, true};
        const OpenNote note(Handle(), id);
        context_ = {};
        context_.lastStatus = 1;
        return IndexNoteAs(kind, note.Get(), &context_);
    }

private:
    static SearchEngineResult AddKey(const PropertyStep& step, IndexJob&, SearchEngineEvent& event)
    {
        return event.AddProperty(CString(step.key), CString("value"));
    }
};

TEST_F(NoteKindSteps, StopAtTheFirstResultThatIsNotZero)
{
    const uint32_t id = Put(std::vector<pavex::Item>{});
    const PropertyFault fault(2);
    EXPECT_FALSE(IndexSteps(kSearchEventNote, id));
    EXPECT_EQ(fault.Keys(), (Strings{"first", "second"}));
    EXPECT_FALSE(fault.Sent());
    EXPECT_EQ(context_.blankResult, static_cast<uint32_t>(-7));
}

TEST_F(NoteKindSteps, AnEventOfNoKindIsNotFilledAndNotWritten)
{
    const uint32_t id = Put(std::vector<pavex::Item>{});
    const PropertyFault none(0);
    EXPECT_TRUE(IndexSteps(kSearchEventNone, id));
    EXPECT_EQ(none.Keys(), Strings{});
    EXPECT_FALSE(none.Sent());
    EXPECT_EQ(context_.lastStatus, 0);
    EXPECT_EQ(context_.blankResult, 0u);
    EXPECT_EQ(Extension(id), "");
}

INSTANTIATE_TEST_SUITE_P(Kinds, EveryKind, testing::ValuesIn(kKinds),
                         [](const testing::TestParamInfo<KindCase>& kind) { return std::string(kind.param.name); });

}  // namespace
