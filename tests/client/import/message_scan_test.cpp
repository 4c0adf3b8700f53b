// tests/client/import/message_scan_test.cpp: identity and digest of messages.
#include "client/import/message_scan.h"

#include <gtest/gtest.h>

namespace pavex {
namespace {

MessageFacts Scan(std::string_view text)
{
    MessageScan scan;
    uint64_t offset = 0;
    while (!text.empty()) {
        Line line;
        const size_t end = text.find('\n');
        line.text = text.substr(0, end);
        line.hasBreak = end != text.npos;
        line.offset = offset;
        line.endOffset = offset + line.text.size() + 1;
        text.remove_prefix(line.hasBreak ? end + 1 : text.size());
        offset += line.text.size() + 1;
        scan.Add(line);
    }
    return scan.Finish();
}

TEST(MessageScan, FindsTheMessageId)
{
    EXPECT_EQ(Scan("Subject: x\nmessage-id:  <a@b>\n\nMessage-ID: <no@body>\n").messageId, "a@b");
    EXPECT_EQ(Scan("Message-ID:\n <folded@b>\n\n").messageId, "folded@b");
    EXPECT_EQ(Scan("Message-ID: bare@b\n").messageId, "bare@b");
    EXPECT_EQ(Scan("Message-ID: <>\nSubject: x\n\n").messageId, "");
    EXPECT_EQ(Scan("Subject: none\n\n").messageId, "");
}

TEST(MessageScan, GivesOneDigestToOneMessageHoweverItIsKept)
{
    const std::string digest = Scan("Subject: x\n\nFrom me\n\nend\n").digest;
    EXPECT_EQ(Scan("Subject: x\n\n>From me\n\nend\n\n\n").digest, digest);
    EXPECT_EQ(Scan("Subject: x\n\n>>From me\n\nend").digest, digest);
    EXPECT_EQ(
        Scan("Status: RO\nSubject: x\nX-Status: A\nContent-Length: 17\nX-Keywords: a\n b\n\nFrom me\n\nend\n").digest,
        digest);
}

TEST(MessageScan, GivesAnotherDigestToEveryOtherMessage)
{
    const std::string digest = Scan("Subject: x\n\none\n\ntwo\n").digest;
    for (const char* other : {"Subject: y\n\none\n\ntwo\n", "Subject: x\n\none\ntwo\n", "Subject: x\n\none\n\n\ntwo\n",
                              "Subject: x\n\n>one\n\ntwo\n", "Subject: x\n\none\n\ntwo \n", "Subject: x\none\n\ntwo\n"})
        EXPECT_NE(Scan(other).digest, digest) << other;
}

TEST(MessageScan, ReadsTheFlagsOfMailboxPrograms)
{
    EXPECT_EQ(Scan("Subject: x\n\n").unread, std::nullopt);
    EXPECT_EQ(Scan("Status: O\n\n").unread, true);
    EXPECT_EQ(Scan("Status: RO\n\n").unread, false);
    EXPECT_EQ(Scan("X-Mozilla-Status: 0001\n\n").unread, false);
    EXPECT_EQ(Scan("X-Mozilla-Status: 0000\n\n").unread, true);
    EXPECT_TRUE(Scan("X-Mozilla-Status: 0009\n\n").deleted);
    EXPECT_TRUE(Scan("X-Status: D\n\n").deleted);
    EXPECT_TRUE(Scan("X-Status: T\n\n").draft);
    EXPECT_TRUE(Scan("X-IMAP: 1234 5\nSubject: DON'T DELETE\n\n").mailboxRecord);
}

TEST(MessageScan, CountsHeaderFields)
{
    EXPECT_EQ(Scan("no header at all\n\nSubject: body\n").headerFields, 0U);
    EXPECT_EQ(Scan("Subject: a\nX-Other: b\n c: d\n\nFrom: e\n").headerFields, 2U);
    EXPECT_EQ(Scan("Subject: a\nX-Other: b\n\n").mailFields, 1U);
}

TEST(MessageScan, NotesWhereBoundariesBecomeAFlood)
{
    std::string text = "Subject: x\n\n";
    for (int i = 0; i < 50000; ++i)
        text += "--b\n";
    EXPECT_EQ(Scan(text).parsedEnd, 0U);
    const uint64_t end = text.size();
    EXPECT_EQ(Scan(text + "--b\n--b\n").parsedEnd, end);
}

TEST(MessageScan, EndsAPreambleOrEpilogueThatHasNoEnd)
{
    std::string megabytes;
    while (megabytes.size() < size_t{3} * 1024 * 1024)
        megabytes += "not a boundary\n";
    const std::string head = "Content-Type: multipart/mixed;\n boundary=\"b c\"\n\n";
    EXPECT_GT(Scan(head + megabytes).parsedEnd, 1024U * 1024);
    EXPECT_EQ(Scan(head + "--b c\n" + megabytes + "--b c--\n").parsedEnd, 0U) << "an attachment may be large";
    EXPECT_GT(Scan(head + "--b c\n--b c--\n" + megabytes).parsedEnd, 0U);
    EXPECT_EQ(Scan("Content-Type: text/plain; boundary=b\n\n" + megabytes).parsedEnd, 0U);
}

TEST(MessageScan, TellsHeaderFieldsFromText)
{
    for (const char* field : {"A: b", "X-Long-Name:", "Subject : old style"})
        EXPECT_TRUE(IsHeaderLine(field)) << field;
    for (const char* text : {"", ":", " a: b", "two words: b", "no colon", "http"})
        EXPECT_FALSE(IsHeaderLine(text)) << text;
}

}  // namespace
}  // namespace pavex
