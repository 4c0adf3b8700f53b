// tests/client/store/line_writer_test.cpp: lines, wrapping and failures of text files.
#include "client/store/line_writer.h"

#include <gtest/gtest.h>

#include <numeric>

#include "client/store/charset.h"
#include "tests/support/temporary_directory.h"

using namespace pavex;

namespace {

std::string Written(const std::vector<std::string>& pieces, LineForm form)
{
    TemporaryDirectory dir;
    TextFile file(dir / "text");
    LineWriter lines(&file, std::move(form));
    for (const std::string& piece : pieces)
        lines.Add(piece);
    lines.EndLine();
    EXPECT_EQ(file.Close(), kStatusOk);
    const std::string text = ReadWholeFile(dir / "text");
    EXPECT_EQ(file.Bytes(), text.size());
    return text;
}

}  // namespace

TEST(LineWriter, EndsLinesAtEveryKindOfBreak)
{
    EXPECT_EQ(Written({std::string("a\nb\r\nc\rd\0e", 10)}, {.end = "|"}), "a|b|c|d|e|");
    EXPECT_EQ(Written({"a\r", "\nb\r\r", "\n\nc"}, {.end = "|"}), "a|b|||c|");
}

TEST(LineWriter, ConvertsTabsOnlyWhenAsked)
{
    EXPECT_EQ(Written({"a\tb"}, {.convertTabs = true}), "a b\n");
    EXPECT_EQ(Written({"a\tb"}, {}), "a\tb\n");
}

TEST(LineWriter, WrapsBetweenWords)
{
    EXPECT_EQ(Written({"the quick brown fox"}, {.mostBytes = 10}), "the quick\nbrown fox\n");
    EXPECT_EQ(Written({"the quick ", "bro", "wn fox"}, {.mostBytes = 10}), "the quick\nbrown fox\n");
    EXPECT_EQ(Written({"exactly 10"}, {.mostBytes = 10}), "exactly 10\n");
}

TEST(LineWriter, CutsWordsThatAreTooLongBetweenCharacters)
{
    EXPECT_EQ(Written({"abcdefgh"}, {.mostBytes = 3}), "abc\ndef\ngh\n");
    const std::string smiley = ScsFromUtf8("\xF0\x9F\x98\x80");
    EXPECT_EQ(Written({smiley + smiley}, {.mostBytes = 8}), smiley + "\n" + smiley + "\n");
    EXPECT_EQ(Written({smiley + smiley}, {.mostBytes = 2}), smiley + "\n" + smiley + "\n");
}

TEST(LineWriter, WrapsALongTextWithoutLosingAWord)
{
    std::string text;
    for (int i = 0; i < 30000; ++i)
        text += (i == 0 ? "" : " ") + std::to_string(i);
    std::string wrapped = Written({text}, {.mostBytes = 72});
    for (size_t start = 0; start < wrapped.size();) {
        const size_t end = wrapped.find('\n', start);
        ASSERT_LE(end - start, 72u);
        start = end + 1;
    }
    wrapped.pop_back();
    std::replace(wrapped.begin(), wrapped.end(), '\n', ' ');
    EXPECT_TRUE(wrapped == text);
}

TEST(TextFile, ReplacesWhatWasThereAndIsPrivate)
{
    TemporaryDirectory dir;
    {
        TextFile file(dir / "new");
        file.Write("x");
        ASSERT_EQ(file.Close(), kStatusOk);
    }
    EXPECT_EQ(std::filesystem::status(dir / "new").permissions(), std::filesystem::perms(0600));
    WriteWholeFile(dir / "old", "long old content");
    TextFile file(dir / "old");
    file.Write("new");
    ASSERT_EQ(file.Close(), kStatusOk);
    EXPECT_EQ(ReadWholeFile(dir / "old"), "new");
}

TEST(TextFile, ReportsAFullDiskAndAMissingFolder)
{
    TextFile full("/dev/full");
    full.Write(std::string(100000, 'x'));
    EXPECT_TRUE(full.Failed());
    EXPECT_EQ(full.Close(), kStatusDiskFull);
    TemporaryDirectory dir;
    TextFile nowhere(dir / "missing/file");
    nowhere.Write("x");
    EXPECT_EQ(nowhere.Close(), kStatusNoSuchFile);
}
