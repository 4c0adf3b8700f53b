// tests/client/import/mbox_reader_test.cpp: mailbox files in every dialect, as the notes they become.
#include "client/import/mbox_reader.h"

#include "tests/client/import/import_fixture.h"

namespace pavex {
namespace {

constexpr const char* kFrom = "From ann@example.org Mon Mar  5 12:00:00 2007\n";

class MboxReaderTest : public ImportTest {
protected:
    // Subject and body of each note of a mailbox of these bytes.
    std::vector<std::string> Read(const std::string& bytes)
    {
        Write("box", bytes);
        report_ = Run({"box"});
        std::vector<std::string> found;
        for (NoteText& note : Notes())
            found.push_back(note["Subject"] + "/" + note["Body"]);
        return found;
    }

    ImportReport report_;
};

using Found = std::vector<std::string>;

std::string WithLineEnds(const std::string& text, const std::string& end)
{
    std::string out;
    for (const char c : text)
        out += c == '\n' ? end : std::string(1, c);
    return out;
}

TEST_F(MboxReaderTest, SplitsAtSeparatorLines)
{
    EXPECT_EQ(Read(kFrom + Message("1@x", "one") + "\n" + kFrom + Message("2@x", "two", "a\n\nb\n")),
              (Found{"one/text\n", "two/a\n\nb\n"}));
}

TEST_F(MboxReaderTest, KeepsSentencesThatBeginLikeSeparators)
{
    EXPECT_EQ(Read(kFrom + Message("1@x", "one",
                                   "a\n\nFrom here on\n\nFrom ann@example.org to ben\n" + std::string(kFrom) + "z\n")),
              (Found{"one/a\n\nFrom here on\n\nFrom ann@example.org to ben\n" + std::string(kFrom) + "z\n"}));
}

TEST_F(MboxReaderTest, TakesQuotingOff)
{
    EXPECT_EQ(Read(kFrom + Message("1@x", "one", ">From a\n>>From b\n> From c\n")),
              (Found{"one/From a\n>From b\n> From c\n"}));
}

TEST_F(MboxReaderTest, TakesEveryLineEnd)
{
    const std::string box = kFrom + Message("1@x", "one", "a\nb\n") + "\n" + kFrom + Message("2@x", "two");
    for (const char* end : {"\r\n", "\r", "\n"})
        EXPECT_EQ(Read(WithLineEnds(box, end)), (Found{"one/a\nb\n", "two/text\n"}));
    EXPECT_EQ(Counts(report_), "added 0 updated 0 unchanged 2 removed 0 rejected 0") << "the same messages all along";
}

TEST_F(MboxReaderTest, TakesAMailboxWithoutALastLineBreak)
{
    EXPECT_EQ(Read(kFrom + Message("1@x", "one", "no end")), (Found{"one/no end\n"}));
}

TEST_F(MboxReaderTest, TakesNulBytes)
{
    std::string message = Message("1@x", "one", "a");
    message.insert(message.find("one") + 1, 1, '\0');
    message += '\0';
    EXPECT_EQ(Read(kFrom + message + "b\n"), (Found{"o ne/a b\n"}));
}

TEST_F(MboxReaderTest, TakesAnEmptyMailbox)
{
    Write("box", "");
    EXPECT_EQ(Counts(Run({"box"})), "added 0 updated 0 unchanged 0 removed 0 rejected 0");
}

TEST_F(MboxReaderTest, ReportsWhatIsNoMessageWithItsPlaceAndReadsOn)
{
    const std::string junk = std::string(kFrom) + "\nno header here\n\n";
    EXPECT_EQ(Read(junk + kFrom + Message("2@x", "two") + "\n" + kFrom + "\n" + kFrom + Message("3@x", "three")),
              (Found{"two/text\n", "three/text\n"}));
    ASSERT_EQ(report_.rejected.size(), 2U);
    EXPECT_EQ(report_.rejected[0].source, Source("box"));
    EXPECT_EQ(report_.rejected[0].where, Source("box") + ":byte 47");
    EXPECT_EQ(report_.rejected[0].reason, "is not a message: it has no header fields");
    EXPECT_EQ(report_.rejected[1].reason, "is empty");
}

TEST_F(MboxReaderTest, BelievesAContentLengthThatFits)
{
    const std::string body = "a\n\n" + std::string(kFrom) + "still the first\n";
    std::string first = Message("1@x", "one", body);
    first.insert(0, "Content-Length: " + std::to_string(body.size()) + "\n");
    EXPECT_EQ(Read(kFrom + first + "\n" + kFrom + Message("2@x", "two")), (Found{"one/" + body, "two/text\n"}));
}

TEST_F(MboxReaderTest, DoesNotBelieveAContentLengthThatDoesNotFit)
{
    for (const char* length : {"3", "99999999", "70", "x", "18446744073709551615"}) {
        const std::string first = std::string("Content-Length: ") + length + "\n" + Message("1@x", "one");
        EXPECT_EQ(Read(kFrom + first + "\n" + kFrom + Message("2@x", "two")), (Found{"one/text\n", "two/text\n"}))
            << length;
    }
}

TEST_F(MboxReaderTest, ReportsDeletedMessagesAndPassesOverTheMailboxItsOwnRecords)
{
    EXPECT_EQ(Read(std::string(kFrom) + "X-IMAP: 1 2\n" + Message("0@x", "DON'T DELETE") + "\n" + kFrom +
                   "X-Mozilla-Status: 0009\n" + Message("1@x", "gone") + "\n" + kFrom + Message("2@x", "two")),
              (Found{"two/text\n"}));
}

TEST_F(MboxReaderTest, DatesAMessageByItsSeparatorWhenItHasNoGoodDate)
{
    Write("box", std::string(kFrom) + "Subject: x\nDate: some day\n\ntext\n");
    Run({"box"});
    EXPECT_EQ(Notes().at(0)["PostedDate"], "2007-03-05T12:00:00Z");
}

TEST_F(MboxReaderTest, ReadsUnreadMarksFromStatusFields)
{
    Write("box", std::string(kFrom) + "Status: RO\n" + Message("1@x", "read") + "\n" + kFrom + "Status: O\n" +
                     Message("2@x", "unread") + "\n" + kFrom + Message("3@x", "unknown"));
    Run({"box"});
    EXPECT_EQ(UnreadSubjects(), (Found{"unread"}));
}

}  // namespace
}  // namespace pavex
