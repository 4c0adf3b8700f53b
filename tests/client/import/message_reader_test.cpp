// tests/client/import/message_reader_test.cpp: which files are messages.
#include "client/import/message_reader.h"

#include "tests/client/import/import_fixture.h"

namespace pavex {
namespace {

class MessageReaderTest : public ImportTest {};

bool Looks(const std::string& head, SourceFile::Place place = SourceFile::Place::kFolder,
           const std::string& path = "/a/file")
{
    SourceFile file;
    file.path = path;
    file.place = place;
    file.head = head;
    file.size = head.size();
    return LooksLikeMessage(file);
}

TEST(MessageFile, IsRecognisedByItsFields)
{
    EXPECT_TRUE(Looks(Message("1@x", "one")));
    EXPECT_TRUE(Looks("\r\n\r\nSubject: x\r\n\r\ntext\r\n"));
    EXPECT_TRUE(Looks("\xEF\xBB\xBFSubject: x\n\ntext\n"));
    EXPECT_TRUE(Looks("Subject: x\rTo: y\r\rtext\r"));
    EXPECT_TRUE(Looks("X-Mailer: y\nFrom: a@b\nDate: now\nbroken line\nTo: c\n\n"));
    EXPECT_FALSE(Looks("Hello,\n\nSubject: no\nFrom: no\n"));
    EXPECT_FALSE(Looks("key: value\nother: value\n\n"));
    EXPECT_FALSE(Looks("Date: x\nthen text that is no field\nand more\n"));
    EXPECT_FALSE(Looks(std::string("\x89PNG\r\n\x1A\n\0\0", 10)));
    EXPECT_FALSE(Looks(""));
}

TEST(MessageFile, IsAnythingInAMaildirAndNamedEml)
{
    EXPECT_TRUE(Looks("whatever", SourceFile::Place::kMaildir));
    EXPECT_TRUE(Looks("whatever", SourceFile::Place::kFolder, "/a/file.EML"));
}

TEST_F(MessageReaderTest, ReadsFoldersOfMessagesAndReportsTheRest)
{
    Write("mail/a.eml", Message("1@x", "one"));
    Write("mail/deep/er/b", "\n\n" + Message("2@x", "two"));
    Write("mail/notes.dat", "just notes\n");
    Write("mail/broken.eml", "no header\n");
    Write("mail/empty.eml", "");
    Write("mail/cr.eml", "Subject: three\rFrom: a@example.org\r\rline\rline\r");
    Write("mail/bom.eml", "\xEF\xBB\xBF" + Message("4@x", "four"));
    Write("mail/sep.eml", "From a@example.org Mon Mar  5 12:00:00 2007\n" + Message("5@x", "five"));
    const ImportReport report = Run({"mail"});
    EXPECT_EQ(Subjects(), (std::vector<std::string>{"one", "four", "three", "five", "two"}));
    EXPECT_EQ(Notes().at(2)["Body"], "line\nline\n");
    std::vector<std::string> rejected;
    for (const RejectedEntry& entry : report.rejected)
        rejected.push_back(entry.where.substr(Source("mail/").size()) + ": " + entry.reason);
    EXPECT_EQ(rejected,
              (std::vector<std::string>{"broken.eml: is not a message: it has no header fields", "empty.eml: is empty",
                                        "notes.dat: is not of a kind that can be imported"}));
}

TEST_F(MessageReaderTest, RejectsAHeaderThatWouldFillMemory)
{
    Write("big.eml", "Subject: x\nX-Long: " + std::string(17 * 1024 * 1024, 'a') + "\n\ntext\n");
    const ImportReport report = Run({"big.eml"});
    ASSERT_EQ(report.rejected.size(), 1U);
    EXPECT_EQ(report.rejected[0].reason, "has a header of more than 16 MB");
}

TEST_F(MessageReaderTest, TakesMessagesOfAMaildirThatBeginWithASeparator)
{
    Write("m/cur/1:2,S", "From a@example.org Mon Mar  5 12:00:00 2007\nSubject: x\n\n>From the quote stays\n");
    Run({"m"});
    EXPECT_EQ(Notes().at(0)["Body"], ">From the quote stays\n");
    EXPECT_EQ(Notes().at(0)["PostedDate"], "2007-03-05T12:00:00Z");
}

}  // namespace
}  // namespace pavex
