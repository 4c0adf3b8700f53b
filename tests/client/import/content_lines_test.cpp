// tests/client/import/content_lines_test.cpp
#include "client/import/content_lines.h"

#include <fcntl.h>

#include "client/import/owners.h"
#include "client/store/descriptor.h"
#include "tests/client/import/import_fixture.h"

namespace pavex {
namespace {

class ContentLinesTest : public ImportTest {
protected:
    // "number:text" of each logical line.
    std::vector<std::string> Lines(const std::string& content)
    {
        Write("lines", content);
        const Descriptor file(::open(Source("lines").c_str(), O_RDONLY | O_CLOEXEC));
        ContentLines lines(file.Get(), 0, content.size());
        std::vector<std::string> all;
        for (ContentLine line; lines.Next(&line);) {
            EXPECT_EQ(line.shortened, line.text.size() == kLongestContentLine);
            all.push_back(std::to_string(line.number) + ":" + line.text);
        }
        EXPECT_EQ(lines.Error(), 0);
        return all;
    }
};

using Strings = std::vector<std::string>;

TEST_F(ContentLinesTest, JoinsFoldedLinesAndCountsPhysicalOnes)
{
    EXPECT_EQ(Lines("A:one\r\n  two\r\n\tthree\r\nB:four\r\n"), (Strings{"1:A:one twothree", "4:B:four"}));
    EXPECT_EQ(Lines("A:one\n\nB:two"), (Strings{"1:A:one", "2:", "3:B:two"}));
}

TEST_F(ContentLinesTest, JoinsQuotedPrintableLinesThatEndInAnEqualsSign)
{
    EXPECT_EQ(Lines("N;ENCODING=QUOTED-PRINTABLE:a=\nb=\n c\nM:x=\ny"),
              (Strings{"1:N;ENCODING=QUOTED-PRINTABLE:ab c", "4:M:x=", "5:y"}));
}

TEST_F(ContentLinesTest, KnowsAQuotedPrintableLineWhereverItsHeadIsFolded)
{
    EXPECT_EQ(Lines("N;X=\"a:=\n b\";QUOTED=\n -PRINTABLE:c=\nd\nE:f"),
              (Strings{"1:N;X=\"a:=b\";QUOTED=-PRINTABLE:c=", "4:d", "5:E:f"}));
    EXPECT_EQ(Lines("N;X=\"a:=\n b\";QUOTED-\n PRINTABLE:c=\nd\nE:f"),
              (Strings{"1:N;X=\"a:=b\";QUOTED-PRINTABLE:cd", "5:E:f"}));
    EXPECT_EQ(Lines("N;QUOTED-PRINTABLE;X=\"a:b=\nc=\nd"), (Strings{"1:N;QUOTED-PRINTABLE;X=\"a:bcd"}));
}

// Were the line read from its beginning at each fold, this would take hours.
TEST_F(ContentLinesTest, ReadsALineOfMillionsOfFoldsOnce)
{
    std::string folds = "A";
    for (int i = 0; i < 2000000; ++i)
        folds += "\r\n =";
    const Strings lines = Lines(folds + "\r\nB:y\r\n");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].size(), kLongestContentLine + 2);
    EXPECT_EQ(lines[1], "2000002:B:y");
}

TEST_F(ContentLinesTest, PassesOverTheRestOfAVeryLongQuotedPrintableLine)
{
    std::string text = "A;QUOTED-PRINTABLE:";
    for (int i = 0; i < 20000; ++i)
        text += std::string(99, 'x') + "=\n";
    const Strings lines = Lines(text + "end\nB:y\n");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[1], "20002:B:y");
}

TEST_F(ContentLinesTest, KeepsTheBeginningOfALineOfAnyLength)
{
    const Strings lines = Lines("A:" + std::string(3 * kLongestContentLine, 'x') + "\nB:y\n");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].size(), kLongestContentLine + 2);
    EXPECT_EQ(lines[1], "2:B:y");
}

TEST_F(ContentLinesTest, FindsNameAndValueBesideGroupsParametersAndQuotes)
{
    EXPECT_EQ(ContentName("item1.tel;type=home:1"), "TEL");
    EXPECT_EQ(ContentValue("CN;X=\"a:b\":value"), 11U);
    EXPECT_EQ(ContentValue("CN;X=\"a:value"), 8U);
    EXPECT_EQ(ContentValue("no value"), std::string::npos);
    EXPECT_TRUE(IsQuotedPrintable("N;quoted-printable:x"));
    EXPECT_FALSE(IsQuotedPrintable("N:QUOTED-PRINTABLE"));
}

}  // namespace
}  // namespace pavex
