// tests/indexers/mail_test.cpp: mail messages, drafts and chats as metafiles.
#include "indexers/mail.h"

#include "settings/settings.h"
#include "tests/indexers/indexer_fixture.h"
#include "tests/indexers/property_faults.h"

namespace {

class MailIndexer : public IndexerTest {};

std::vector<pavex::Item> FullMessage()
{
    return {
        TextItem("Form", "Memo"),
        TextListItem("SendTo", {"Bo Ek", "CN=Cy Fry/O=Acme"}),
        TextListItem("CopyTo", {"dee@example.org"}),
        TextItem("BlindCopyTo", "CN=Ed Gray/O=Acme"),
        TextItem("ReplyTo", "lists@example.org"),
        TextItem("From", "CN=Ann Lee/O=Acme"),
        TextItem("Subject", "Grüße \xF0\x9F\x98\x80"),
        TimeItem("PostedDate", "2007-02-28T10:15:30Z"),
        BodyItem({"First line", "Second line"}),
    };
}

TEST_F(MailIndexer, WritesEveryFieldOfAMessage)
{
    EXPECT_EQ(Indexed(FullMessage(), IndexMailNote), (Properties{
                                                         {"received", "date 2007-02-28T10:15:30Z"},
                                                         {"from", "Ann Lee/Acme"},
                                                         {"to", "Bo Ek, Cy Fry/Acme"},
                                                         {"subject", "Grüße \xF0\x9F\x98\x80"},
                                                         {"cc", "dee@example.org"},
                                                         {"bcc", "Ed Gray/Acme"},
                                                         {"replyto", "lists@example.org"},
                                                         {"com.quorvex.pavex.content", "First line\r\nSecond line\r\n"},
                                                     }));
}

TEST_F(MailIndexer, WritesAMessageFile)
{
    const uint32_t id = Put(FullMessage());
    ASSERT_TRUE(Index(id, IndexMailNote));
    EXPECT_EQ(Extension(id), "vPavexMessage");
    EXPECT_EQ(context_.writtenSize, 0);
}

TEST_F(MailIndexer, LeavesAbsentAndEmptyFieldsOut)
{
    EXPECT_EQ(
        Indexed({TextItem("Form", "Memo"), TimeItem("PostedDate", kCreated), TextItem("CopyTo", "")}, IndexMailNote),
        (Properties{{"received", "date 2007-03-01T08:00:00Z"}, {"com.quorvex.pavex.content", ""}}));
}

TEST_F(MailIndexer, NamesThePrincipalAsSender)
{
    auto items = FullMessage();
    items.push_back(TextItem("Principal", "CN=Pia Rock/O=Acme"));
    EXPECT_EQ(Indexed(items, IndexMailNote).at("from"), "Pia Rock/Acme");
}

TEST_F(MailIndexer, TakesTheModificationTimeWhereThePostedTimeIsNone)
{
    EXPECT_EQ(Indexed({TextItem("Form", "Memo"), TextItem("PostedDate", "soon")}, IndexMailNote).at("received"),
              "date 2007-03-02T09:30:00Z");
}

TEST_F(MailIndexer, TakesTheModificationTimeWhereThePostedTimeHasNoDate)
{
    const TIMEDATE timeOnly = {{3693000, 0xFFFFFFFF}};
    EXPECT_EQ(
        Indexed({TextItem("Form", "Memo"), pavex::TimeItem("PostedDate", timeOnly)}, IndexMailNote).at("received"),
        "date 2007-03-02T09:30:00Z");
}

TEST_F(MailIndexer, AMessageWithoutAnyTimeIsRemoved)
{
    const uint32_t id = Put({TextItem("Form", "Memo"), TextItem("PostedDate", "soon")});
    ASSERT_TRUE(Index(id, IndexMailNote));
    ASSERT_EQ(Extension(id), "vPavexMessage");
    const NoteTimesFault fault;
    EXPECT_TRUE(Index(id, IndexMailNote));
    EXPECT_EQ(context_.lastStatus, 549);
    EXPECT_EQ(context_.blankResult, 0u);
    EXPECT_EQ(Extension(id), "");
}

TEST_F(MailIndexer, RemovesADraftUnlessDraftsAreIndexed)
{
    const uint32_t draft = Put({TextItem("Form", "Memo"), TextItem("Subject", "unsent")});
    SetIndexingDrafts(true);
    ASSERT_TRUE(Index(draft, IndexMailNote));
    EXPECT_EQ(Metafile(draft).at("received"), "date 2007-03-02T09:30:00Z");

    SetIndexingDrafts(false);
    EXPECT_TRUE(Index(draft, IndexMailNote));
    EXPECT_EQ(context_.lastStatus, 549);
    EXPECT_EQ(context_.blankResult, 0u);
    EXPECT_EQ(Extension(draft), "");
}

TEST_F(MailIndexer, ADraftThatWasNeverIndexedLeavesNothing)
{
    const uint32_t draft = Put({TextItem("Form", "Memo")});
    EXPECT_TRUE(Index(draft, IndexMailNote));
    EXPECT_EQ(context_.lastStatus, 549);
    EXPECT_EQ(Extension(draft), "");
}

TEST_F(MailIndexer, IndexesAChatUnlessChatsAreOff)
{
    const uint32_t chat = Put({TextItem("Form", "Memo"), TextItem("$IMTranscript", "1")});
    ASSERT_TRUE(Index(chat, IndexMailNote));
    EXPECT_EQ(Metafile(chat).at("received"), "date 2007-03-02T09:30:00Z");

    SetIndexingChats(false);
    EXPECT_TRUE(Index(chat, IndexMailNote));
    EXPECT_EQ(context_.lastStatus, 549);
    EXPECT_EQ(Extension(chat), "");
}

TEST_F(MailIndexer, AChatIsNoDraftWhereOnlyDraftsAreIndexed)
{
    const uint32_t chat = Put({TextItem("Form", "Memo"), TextItem("$IMTranscript", "1")});
    ASSERT_TRUE(Index(chat, IndexMailNote));
    ASSERT_EQ(Extension(chat), "vPavexMessage");
    SetIndexingChats(false);
    SetIndexingDrafts(true);
    EXPECT_TRUE(Index(chat, IndexMailNote));
    EXPECT_EQ(context_.lastStatus, 549);
    EXPECT_EQ(Extension(chat), "");
}

TEST_F(MailIndexer, AChatThatWasSentIsAMessage)
{
    SetIndexingChats(false);
    const uint32_t id =
        Put({TextItem("Form", "Memo"), TextItem("$IMTranscript", "1"), TimeItem("PostedDate", kCreated)});
    EXPECT_TRUE(Index(id, IndexMailNote));
    EXPECT_EQ(Extension(id), "vPavexMessage");
}

TEST_F(MailIndexer, ReadsAnyFieldByItsNumber)
{
    auto items = FullMessage();
    const uint32_t id = Put(items);
    items.push_back(TextItem("Principal", "CN=Pia Rock/O=Acme"));
    const uint32_t onBehalf = Put(items);
    const auto field = [this](uint32_t noteId, unsigned short number) {
        const OpenNote note(Handle(), noteId);
        SearchEngineEvent event(kSearchEventMessage);
        EXPECT_EQ(IndexSimpleMailItem(note.Get(), number, event, "field"), 0);
        const auto* value = static_cast<CFStringRef>(CFDictionaryGetValue(event.Properties(), CFSTR("field")));
        return value == nullptr ? std::string("none") : CString(value).toString();
    };
    EXPECT_EQ(field(id, 0), "Bo Ek, Cy Fry/Acme");
    EXPECT_EQ(field(id, 1), "dee@example.org");
    EXPECT_EQ(field(id, 2), "Ann Lee/Acme");
    EXPECT_EQ(field(onBehalf, 2), "Pia Rock/Acme");
    EXPECT_EQ(field(id, 3), "Grüße \xF0\x9F\x98\x80");
    EXPECT_EQ(field(id, 13), "Ed Gray/Acme");
    EXPECT_EQ(field(id, 123), "lists@example.org");
    EXPECT_EQ(field(id, 77), "none");
}

}  // namespace
