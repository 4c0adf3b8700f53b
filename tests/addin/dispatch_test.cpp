// tests/addin/dispatch_test.cpp: which indexer gets a note, and removals.
#include "addin/dispatch.h"

#include "client/foundation/host.h"
#include "client/store/richtext.h"
#include "metastore/search_engine.h"
#include "settings/settings.h"
#include "tests/addin/addin_fixture.h"
#include "tests/support/fault_plan.h"

namespace {

class Dispatch : public AddInTest {
protected:
    Dispatch() : mail_(PathOf("mail.vlt"), "Mail") {}
    ~Dispatch() override
    {
        if (db_ != 0)
            VLTDbClose(db_);
    }
    DBHANDLE Db()
    {
        if (db_ == 0) {
            EXPECT_EQ(VLTDbOpen(mail_.Path().c_str(), &db_), 0);
        }
        return db_;
    }
    bool Index(uint32_t id)
    {
        NOTEHANDLE note = 0;
        EXPECT_EQ(VLTNoteOpen(Db(), id, 0, &note), 0);
        const bool indexed = IndexNote(note, &context_);
        EXPECT_EQ(VLTNoteClose(note), 0);
        return indexed;
    }
    // Extensions of the metafiles, sorted by path.
    std::vector<std::string> KindsWritten() const
    {
        std::vector<std::string> kinds;
        for (const auto& [path, subject] : Metafiles())
            kinds.push_back(path.substr(path.rfind('.') + 1));
        return kinds;
    }

    Mailbox mail_;
    DBHANDLE db_ = 0;
    INDEXCONTEXT context_ = {};
};

using Kinds = std::vector<std::string>;

struct FormAndKind {
    const char* form;
    const char* kind;
};

TEST_F(Dispatch, EachFormGoesToItsIndexer)
{
    SetVariable("GDSIndexDiscussion", "1");
    for (const FormAndKind& row : {FormAndKind{"Person", "vPavexContact"},
                                   {"JournalEntry", "vPavexJournal"},
                                   {"MainTopic", "vPavexDiscussion"}}) {
        const uint32_t id = mail_.AddPlain(row.form, row.form);
        EXPECT_TRUE(Index(id)) << row.form;
        EXPECT_EQ(KindsWritten(), Kinds{row.kind});
        EXPECT_TRUE(DeleteNoteIDFromIndex(Db(), id, &context_));
    }
    EXPECT_TRUE(Index(mail_.Add("mail")));
    EXPECT_EQ(KindsWritten(), Kinds{"vPavexMessage"});
}

TEST_F(Dispatch, AKindThatIsSwitchedOffDoesNotFallThroughToALaterOne)
{
    SetGoogleSupport(kNoteKindTask, false);
    EXPECT_FALSE(Index(mail_.Add("a task", "Task")));
    SetGoogleSupport(kNoteKindCalendar, false);
    EXPECT_FALSE(Index(mail_.Add("scores as mail, but is a meeting", "Appointment")));
    EXPECT_TRUE(KindsWritten().empty());
}

TEST_F(Dispatch, WithDiscussionsOffAPostingGoesOnToTheLaterKinds)
{
    EXPECT_TRUE(Index(mail_.Add("scores as mail", "MainTopic")));
    EXPECT_EQ(KindsWritten(), Kinds{"vPavexMessage"});
}

TEST_F(Dispatch, AnyOtherNoteIsIndexedAsItselfUnlessThatIsSwitchedOff)
{
    EXPECT_TRUE(Index(mail_.AddPlain("Soup", "Recipe")));
    EXPECT_EQ(KindsWritten(), Kinds{"vPavexNote"});
}

TEST_F(Dispatch, OtherNotesAreLeftOutWhenAskedFor)
{
    SetVariable("GoogleNoIndexAll", "1");
    EXPECT_FALSE(Index(mail_.AddPlain("Soup", "Recipe")));
    EXPECT_TRUE(KindsWritten().empty());
}

TEST_F(Dispatch, WhenNoIndexerRunsTheContextKeepsWhatTheLastOneLeft)
{
    SetGoogleSupport(kNoteKindTask, false);
    context_.lastStatus = 549;
    context_.blankResult = 7;
    EXPECT_FALSE(Index(mail_.Add("a task", "Task")));
    EXPECT_EQ(context_.lastStatus, 549);
    EXPECT_EQ(context_.blankResult, 7U);
}

TEST_F(Dispatch, EachKindIsLeftOutByItsBitAndByNoOther)
{
    SetVariable("GDSIndexDiscussion", "1");
    struct Row {
        uint32_t bit;
        const char* form;
    };
    const Row rows[] = {{kNoteKindDiscussion, "MainTopic"},
                        {kNoteKindContact, "Person"},
                        {kNoteKindJournal, "JournalEntry"},
                        {kNoteKindGeneric, "Recipe"}};
    for (const Row& off : rows) {
        SetGoogleSupport(off.bit, false);
        for (const Row& row : rows) {
            const uint32_t id = mail_.AddPlain(row.form, row.form);
            EXPECT_EQ(Index(id), row.bit != off.bit) << row.form << " without " << off.bit;
            EXPECT_EQ(KindsWritten().size(), row.bit != off.bit ? 1U : 0U) << row.form << " without " << off.bit;
            EXPECT_TRUE(DeleteNoteIDFromIndex(Db(), id, &context_));
        }
        SetGoogleSupport(off.bit, true);
    }
}

TEST_F(Dispatch, WithDiscussionsOffAPostingThatIsNoMailIsIndexedAsItself)
{
    EXPECT_TRUE(Index(mail_.AddPlain("a posting", "MainTopic")));
    EXPECT_EQ(KindsWritten(), Kinds{"vPavexNote"});
}

// What a history pass finds.
class HistoryDispatch : public Dispatch {
protected:
    HistoryDispatch() { context_.history = true; }
    uint32_t AddBookmark()
    {
        pavex::RichTextBuilder link;
        link.AddLink({{{1, 2}}, {}, {{{3, 4}}, {{5, 6}}}, 0}, "a page");
        pavex::Note note;
        note.items = {pavex::TextItem("Form", "HistoryListEntry"), pavex::TextItem("Title", "A page"),
                      pavex::RichTextItem("URL", link.Records())};
        EXPECT_EQ(mail_.Db().Put(&note), 0);
        return note.id;
    }
};

TEST_F(HistoryDispatch, AHistoryPassIndexesAHistoryEntry)
{
    EXPECT_TRUE(Index(AddBookmark()));
    EXPECT_EQ(KindsWritten(), Kinds{"vPavexHistory"});
    EXPECT_EQ(context_.lastStatus, 0);
}

TEST_F(HistoryDispatch, HistoryEntriesGoByTheBitOfOtherNotes)
{
    SetGoogleSupport(kNoteKindGeneric, false);
    EXPECT_FALSE(Index(AddBookmark()));
    EXPECT_TRUE(KindsWritten().empty());
}

TEST_F(HistoryDispatch, AHistoryEntryIsIndexedThoughOtherNotesAreLeftOut)
{
    SetVariable("GoogleNoIndexAll", "1");
    EXPECT_TRUE(Index(AddBookmark()));
    EXPECT_EQ(KindsWritten(), Kinds{"vPavexHistory"});
}

TEST_F(Dispatch, AHistoryPassTakesHistoryEntriesOnly)
{
    context_.history = true;
    EXPECT_FALSE(Index(mail_.Add("mail")));
    EXPECT_TRUE(KindsWritten().empty());
}

TEST_F(Dispatch, ASealedNoteIsReadOnlyWhenTheUserAsksForIt)
{
    pavex::Note note = MailNote("sealed");
    note.sealed = true;
    for (pavex::Item& item : note.items)
        if (item.name == "Body")
            item.flags = pavex::kItemSealed;
    ASSERT_EQ(mail_.Db().Put(&note), 0);
    ASSERT_TRUE(Index(note.id));
    const std::string path = MetadataRoot() + "/" + Metafiles().begin()->first;
    EXPECT_EQ(ReadWholeFile(path).find("Body of sealed"), std::string::npos);
    SetIndexingEncrypted(true);
    ASSERT_TRUE(Index(note.id));
    EXPECT_NE(ReadWholeFile(path).find("Body of sealed"), std::string::npos);
}

TEST_F(Dispatch, AnOpenNotesEntryIsRemoved)
{
    const uint32_t id = mail_.Add("note");
    ASSERT_TRUE(Index(id));
    NOTEHANDLE note = 0;
    ASSERT_EQ(VLTNoteOpen(Db(), id, 0, &note), 0);
    context_.lastStatus = 3;
    context_.blankResult = 4;
    EXPECT_TRUE(DeleteNoteFromIndex(note, &context_));
    EXPECT_EQ(context_.lastStatus, 0);
    EXPECT_EQ(context_.blankResult, 0U);
    EXPECT_TRUE(Metafiles().empty());
    EXPECT_EQ(VLTNoteClose(note), 0);
}

TEST_F(Dispatch, NoNoteIsRemovedForAZeroHandle)
{
    EXPECT_FALSE(DeleteNoteFromIndex(0, &context_));
}

TEST_F(Dispatch, ADeletedNotesEntryIsRemovedByItsUrl)
{
    const uint32_t id = mail_.Add("note");
    ASSERT_TRUE(Index(id));
    mail_.Delete(id);
    EXPECT_TRUE(DeleteNoteIDFromIndex(Db(), id, &context_));
    EXPECT_TRUE(Metafiles().empty());
}

TEST_F(Dispatch, WhereRemovalIsNotSupportedABlankRecordSettlesTheCountersAndTheFileStays)
{
    const uint32_t id = mail_.Add("note");
    ASSERT_TRUE(Index(id));
    mail_.Delete(id);
    SetGoogleSupport(kNoteKindRemoval, false);
    context_.lastStatus = 3;
    EXPECT_TRUE(DeleteNoteIDFromIndex(Db(), id, &context_));
    EXPECT_EQ(context_.lastStatus, 0);
    EXPECT_EQ(context_.blankResult, 0U);
    EXPECT_EQ(Subjects(), std::vector<std::string>{"note"});
}

TEST_F(Dispatch, ANoteThatNeverWasLeavesNothingToRemove)
{
    context_.blankResult = 5;
    context_.lastStatus = 6;
    EXPECT_FALSE(DeleteNoteIDFromIndex(Db(), 4711, &context_));
    EXPECT_EQ(context_.blankResult, 0U);
    EXPECT_EQ(context_.lastStatus, 0);
}

TEST_F(Dispatch, ABlankItemIsAnEmptyText)
{
    SearchEngineResult result = kSearchEngineNoError;
    SearchEngineEvent event = SearchEngine::GetInstance()->CreateEvent(kSearchEventMessage, result);
    EXPECT_EQ(IndexBlankItem(event, "from"), kSearchEngineNoError);
}

TEST_F(Dispatch, NothingOfTheSystemsObjectsIsLeftBehind)
{
    const uint32_t id = mail_.Add("note");
    ASSERT_TRUE(Index(id));
    const long objects = pavex::LiveObjects();
    const int handles = pavex::OpenHandles();
    ASSERT_TRUE(Index(id));
    ASSERT_TRUE(DeleteNoteIDFromIndex(Db(), id, &context_));
    EXPECT_EQ(pavex::LiveObjects(), objects);
    EXPECT_EQ(pavex::OpenHandles(), handles);
}

}  // namespace
