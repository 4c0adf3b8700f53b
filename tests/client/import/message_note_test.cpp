// tests/client/import/message_note_test.cpp: the items of a message's note.
#include "client/import/message_note.h"

#include <cstdio>

#include "client/store/timedate.h"
#include "tests/client/import/import_fixture.h"

namespace pavex {
namespace {

Note Parse(const std::string& bytes, const MessageCircumstances& circumstances = {})
{
    StartMimeLibrary();
    const ObjectOwner<GMimeStream> stream(g_mime_stream_mem_new_with_buffer(bytes.data(), bytes.size()));
    Note note;
    std::string reason;
    EXPECT_TRUE(ParseMessageNote(stream.get(), circumstances, &note, &reason)) << reason;
    return note;
}

TEST(MessageNote, HasTheItemsOfItsMessage)
{
    const NoteText expected = {
        {"Form", "Reply"},
        {"From", "Ann Lee <ann@example.org>"},
        {"Principal", "Jo Typist <jo@example.org>"},
        {"SendTo", "Ben <ben@example.org>|carol@example.org|dora@example.org"},
        {"CopyTo", "Eve <eve@example.org>"},
        {"BlindCopyTo", "finn@example.org"},
        {"ReplyTo", "list@example.org"},
        {"Subject", "Grüße"},
        {"PostedDate", "2007-03-05T12:00:00Z"},
        {"$MessageID", "2@x"},
        {"$References", "0@x|1@x"},
        {"Body", "one\n\ntwo\n"},
    };
    EXPECT_EQ(TextOfNote(Parse("From: Ann Lee <ann@example.org>\nSender: Jo Typist <jo@example.org>\n"
                               "To: Ben <ben@example.org>, carol@example.org\nTo: dora@example.org\n"
                               "Cc: Eve <eve@example.org>\nBcc: finn@example.org\nReply-To: list@example.org\n"
                               "Subject: =?utf-8?q?Gr=C3=BC=C3=9Fe?=\nDate: Mon, 5 Mar 2007 13:00:00 +0100\n"
                               "Message-ID: <2@x>\nReferences: <0@x>\n <1@x>\nIn-Reply-To: <1@x>\n\none\n\ntwo\n")),
              expected);
}

TEST(MessageNote, IsAMemoUnlessItAnswers)
{
    EXPECT_EQ(TextOfNote(Parse("Subject: Re: x\n\n"))["Form"], "Memo");
    EXPECT_EQ(TextOfNote(Parse("In-Reply-To: <1@x>\n\n"))["Form"], "Reply");
    EXPECT_EQ(TextOfNote(Parse("References: <1@x>\n\n"))["Form"], "Reply");
    EXPECT_EQ(TextOfNote(Parse("References:\n\n"))["Form"], "Memo");
}

TEST(MessageNote, IsATopicOrAResponseByItsLevelInADiscussion)
{
    MessageCircumstances discussion;
    discussion.as = ImportOptions::As::kDiscussion;
    const Note topic = Parse("Subject: x\nDate: Mon, 5 Mar 2007 12:00:00 +0000\n\n", discussion);
    EXPECT_EQ(TextOfNote(topic)["Form"], "MainTopic");
    EXPECT_EQ(IsoFromTime(topic.created), "2007-03-05T12:00:00Z");
    discussion.level = PostingLevel::kResponse;
    EXPECT_EQ(TextOfNote(Parse("In-Reply-To: <1@x>\n\n", discussion))["Form"], "Response");
    discussion.level = PostingLevel::kResponseToResponse;
    EXPECT_EQ(TextOfNote(Parse("In-Reply-To: <1@x>\n\n", discussion))["Form"], "ResponseToResponse");
}

TEST(MessageNote, NamesNoPrincipalThatIsTheAuthor)
{
    EXPECT_EQ(TextOfNote(Parse("From: Ann <a@x.org>\nSender: Ann <a@x.org>\n\n")).count("Principal"), 0U);
    EXPECT_EQ(TextOfNote(Parse("Sender: Ann <a@x.org>\n\n"))["From"], "Ann <a@x.org>");
}

TEST(MessageNote, IsDatedByTheBestThatThereIs)
{
    const std::string received = "Received: by x; Tue, 6 Mar 2007 12:00:00 +0000\n";
    MessageCircumstances known;
    known.fileDate = 86400;
    const auto posted = [&](const std::string& header) {
        return TextOfNote(Parse(header + "\n", known))["PostedDate"];
    };
    EXPECT_EQ(posted("Date: Mon, 5 Mar 2007 12:00:00 +0000\n" + received), "2007-03-05T12:00:00Z");
    EXPECT_EQ(posted("Date: Mon, 5 Mar 3607 12:00:00 +0000\n" + received), "2007-03-06T12:00:00Z");
    EXPECT_EQ(posted("Date: soon\n"), "1970-01-02T00:00:00Z");
    known.deliveryDate = 2 * 86400;
    EXPECT_EQ(posted("Date: soon\n" + received), "1970-01-03T00:00:00Z");
}

TEST(MessageNote, HasNoPostedDateWhenItIsADraft)
{
    MessageCircumstances draft;
    draft.draft = true;
    const Note note = Parse("Subject: x\nDate: Mon, 5 Mar 2007 12:00:00 +0000\n\n", draft);
    EXPECT_EQ(TextOfNote(note).count("PostedDate"), 0U);
    EXPECT_EQ(IsoFromTime(note.modified), "2007-03-05T12:00:00Z");
}

TEST(MessageNote, HoldsThousandsOfRecipients)
{
    std::string to = "To: ";
    for (int i = 0; i < 40000; ++i)
        to += "a" + std::to_string(i) + "@x.org,\n ";
    const Note note = Parse(to + "z@x.org\n\ntext\n");
    EXPECT_EQ(TextValues(*note.Find("SendTo"))->size(), 30000U);
}

// The process's memory that is in use, in kB.
long ResidentKilobytes()
{
    long total = 0;
    long resident = 0;
    FILE* const file = std::fopen("/proc/self/statm", "re");
    if (file == nullptr || std::fscanf(file, "%ld %ld", &total, &resident) != 2)
        resident = 0;
    if (file != nullptr)
        std::fclose(file);
    return resident * 4;
}

class HugeMessageTest : public ImportTest {};

TEST_F(HugeMessageTest, PassesThroughLittleMemory)
{
    constexpr size_t kAttachment = 100 * 1024 * 1024;
    const std::string head = "Subject: huge\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\ntext\n--b\n"
                             "Content-Type: application/x; name=huge.bin\nContent-Transfer-Encoding: base64\n\n";
    Write("huge.eml", head);
    {
        FILE* const file = std::fopen(Source("huge.eml").c_str(), "ae");
        ASSERT_NE(file, nullptr);
        const std::string line = std::string(76, 'A') + "\n";
        for (size_t written = 0; written < kAttachment; written += line.size())
            ASSERT_EQ(std::fwrite(line.data(), 1, line.size(), file), line.size());
        std::fputs("--b\n\nafter it\n--b--\n", file);
        std::fclose(file);
    }
    const long before = ResidentKilobytes();
    Run({"huge.eml"});
    EXPECT_LT(ResidentKilobytes() - before, 32 * 1024);
    EXPECT_EQ(Notes().at(0)["Body"], "text\n\nafter it\n");
    EXPECT_EQ(Notes().at(0)["$FILE"], "huge.bin");
}

}  // namespace
}  // namespace pavex
