// tests/indexers/classification_test.cpp: which kind a note is, and that the dispatch follows it.
#include "indexers/classification.h"

#include "addin/dispatch.h"
#include "settings/settings.h"
#include "tests/indexers/indexer_fixture.h"

namespace {

class Classification : public IndexerTest {
protected:
    // The predicates that say yes, by their letters: calendar, task, contact, journal, discussion, mail, history.
    std::string Kinds(std::vector<pavex::Item> items)
    {
        const OpenNote note(Handle(), Put(std::move(items)));
        std::string kinds;
        const auto ask = [&](bool (*is)(NOTEHANDLE), char letter) {
            if (is(note.Get()))
                kinds += letter;
        };
        ask(IsCalendarNote, 'c');
        ask(IsTaskNote, 't');
        ask(IsContactNote, 'p');
        ask(IsJournalNote, 'j');
        ask(IsDiscussionNote, 'd');
        ask(IsMailNote, 'm');
        ask(IsHistoryNote, 'h');
        return kinds;
    }
    std::string KindsOfForm(const char* form) { return Kinds({TextItem("Form", form)}); }

    // The extension with which the note is indexed, empty when it is not.
    std::string Dispatched(std::vector<pavex::Item> items)
    {
        const uint32_t id = Put(std::move(items));
        const bool indexed = Index(id, IndexNote);
        EXPECT_EQ(indexed, !Extension(id).empty());
        return Extension(id);
    }
};

TEST_F(Classification, EveryFormHasItsKind)
{
    const std::pair<const char*, const char*> forms[] = {
        {"Appointment", "c"},
        {"Task", "t"},
        {"Person", "p"},
        {"JournalEntry", "j"},
        {"CleanSheet", "j"},
        {"MainTopic", "d"},
        {"Response", "d"},
        {"ResponseToResponse", "d"},
        {"Announcement", "d"},
        {"Memo", "m"},
        {"Reply", "m"},
        {"Reply With History", "m"},
        {"Notice", "m"},
        {"TaskNotice", "m"},
        {"HistoryListEntry", ""},
        {"Other", ""},
        {"", ""},
    };
    for (const auto& [form, kind] : forms)
        EXPECT_EQ(KindsOfForm(form), kind) << form;
}

TEST_F(Classification, AFormIsComparedWholeAndWithoutRegardToCase)
{
    EXPECT_EQ(KindsOfForm("appointment"), "c");
    EXPECT_EQ(KindsOfForm("APPOINTMENT"), "c");
    EXPECT_EQ(KindsOfForm("person"), "p");
    EXPECT_EQ(KindsOfForm(" Appointment"), "");
    EXPECT_EQ(KindsOfForm("Appointment "), "");
    EXPECT_EQ(KindsOfForm("Appointments"), "");
    EXPECT_EQ(KindsOfForm("Appoint"), "");
}

TEST_F(Classification, AFormWithALineBreakIsNotWhatStandsBeforeIt)
{
    EXPECT_EQ(KindsOfForm("Memo\nanything"), "");
    EXPECT_EQ(KindsOfForm("Memo\n"), "");
    EXPECT_EQ(Kinds({TextListItem("Form", {"Task\n", "Memo"})}), "");
}

TEST_F(Classification, AListOfFormsCountsByItsFirst)
{
    EXPECT_EQ(Kinds({TextListItem("Form", {"Task", "Memo"})}), "t");
}

TEST_F(Classification, AFormThatIsCutAt255BytesIsNoShorterForm)
{
    EXPECT_EQ(KindsOfForm(("Task" + std::string(300, ' ')).c_str()), "");
}

TEST_F(Classification, TheZeroNoteIsNoKind)
{
    for (auto* is :
         {IsCalendarNote, IsTaskNote, IsContactNote, IsJournalNote, IsDiscussionNote, IsMailNote, IsHistoryNote})
        EXPECT_FALSE(is(0));
}

TEST_F(Classification, MailNeedsFourPointsOfItsItems)
{
    const auto items = [](std::initializer_list<const char*> names) {
        std::vector<pavex::Item> made;
        for (const char* name : names)
            made.push_back(TextItem(name, ""));
        return made;
    };
    EXPECT_EQ(Kinds(items({"Subject", "From", "SendTo"})), "");
    EXPECT_EQ(Kinds(items({"PostedDate", "Subject", "From"})), "m");
    EXPECT_EQ(Kinds(items({"SendTo", "CopyTo", "Subject", "From"})), "m");
    EXPECT_EQ(Kinds(items({"EnterSendTo", "EnterCopyTo", "PostedDate"})), "m");
    EXPECT_EQ(Kinds(items({"EnterSendTo", "ReplyTo", "PostedDate"})), "m");
    // One point at most for who it goes to, and one for who gets a copy.
    EXPECT_EQ(Kinds(items({"SendTo", "EnterSendTo", "Subject", "From"})), "");
    EXPECT_EQ(Kinds(items({"CopyTo", "EnterCopyTo", "ReplyTo", "PostedDate"})), "");
    EXPECT_EQ(Kinds({}), "");
}

TEST_F(Classification, AHistoryEntryHasATitleAndAnAddress)
{
    const auto entry = TextItem("Form", "historylistentry");
    EXPECT_EQ(Kinds({entry, TextItem("Title", ""), TextItem("URL", "")}), "h");
    EXPECT_EQ(Kinds({entry, TextItem("Title", "t")}), "");
    EXPECT_EQ(Kinds({entry, TextItem("URL", "u")}), "");
    EXPECT_EQ(Kinds({TextItem("Form", "Other"), TextItem("Title", "t"), TextItem("URL", "u")}), "");
}

TEST_F(Classification, APostingIsMailByItsItemsWhileDiscussionsAreOff)
{
    const std::vector<pavex::Item> posting = {TextItem("Form", "MainTopic"), TextItem("Subject", "s"),
                                              TextItem("From", "f"), TimeItem("PostedDate", kCreated)};
    EXPECT_EQ(Dispatched(posting), "vPavexMessage");
    SetIndexingDiscussion(true);
    EXPECT_EQ(Dispatched(posting), "vPavexDiscussion");
}

TEST_F(Classification, AKindThatIsNotSupportedIsNotPassedOnToALaterOne)
{
    dwGoogleSupport = kNoteKindsDefault & ~(kNoteKindCalendar | kNoteKindTask);
    const std::vector<pavex::Item> mailItems = {TextItem("Subject", "s"), TextItem("From", "f"),
                                                TimeItem("PostedDate", kCreated)};
    auto entry = mailItems;
    entry.push_back(TextItem("Form", "Appointment"));
    EXPECT_EQ(Dispatched(entry), "");
    auto task = mailItems;
    task.push_back(TextItem("Form", "Task"));
    EXPECT_EQ(Dispatched(task), "");
    EXPECT_EQ(Dispatched(mailItems), "vPavexMessage");
}

TEST_F(Classification, WhatIsOfNoKindIsGenericWhereAllNotesAreIndexed)
{
    EXPECT_EQ(Dispatched({TextItem("Subject", "s")}), "vPavexNote");
    EXPECT_EQ(Dispatched({TextItem("Form", "HistoryListEntry"), TextItem("Title", "t"), TextItem("URL", "u")}),
              "vPavexNote");
    bIniIndexAllNotes = 0;
    EXPECT_EQ(Dispatched({TextItem("Subject", "s")}), "");
}

}  // namespace
