// tests/client/app/terminal_text_test.cpp: text as it may go to a terminal.
#include "client/app/terminal_text.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

namespace pavex {
namespace {

TEST(TerminalText, CountsColumns)
{
    struct Row {
        const char* text;
        size_t columns;
    };
    constexpr Row kRows[] = {
        {"", 0},     {"abc", 3},     {"é", 1},        {"e\u0301", 1},
        {"東京", 4}, {"ｶﾅ", 2},      {"한국", 4},     {"\u1112\u1161\u11AB", 2},
        {"😀", 2},    {"☎\uFE0F", 2}, {"a\u200Db", 2}, {"\033[1mbold\033[0m", 4},
    };
    for (const auto& [text, columns] : kRows)
        EXPECT_EQ(ColumnsOf(text), columns) << text;
}

TEST(TerminalText, BreaksLinesWhereReadersExpectIt)
{
    EXPECT_EQ(WrapLine("the stripes were painted", 12, 2), "the stripes\n  were\n  painted");
    EXPECT_EQ(WrapLine("the stripes were painted", 0, 2), "the stripes were painted");
    EXPECT_EQ(WrapLine("the stripes", 11, 2), "the stripes");
    EXPECT_EQ(WrapLine("東京都庁で会議", 6, 0), "東京都\n庁で会\n議");
    EXPECT_EQ(WrapLine("東京都庁", 5, 0), "東京\n都庁");
    EXPECT_EQ(WrapLine("a 東京", 4, 0), "a 東\n京");
    EXPECT_EQ(WrapLine("abcdefghij", 4, 1), "abcd\n efg\n hij");
    EXPECT_EQ(WrapLine("two  blanks", 6, 0), "two\nblanks");
    EXPECT_EQ(WrapLine("", 5, 2), "");
    EXPECT_EQ(IndentLine("the stripes were painted", 16, 4), "    the stripes\n    were painted");
    EXPECT_EQ(IndentLine("the stripes", 0, 4), "    the stripes");
    EXPECT_EQ(IndentLine("abcdef", 4, 4), " abc\n def") << "a narrow screen is indented less";
}

TEST(TerminalText, KeepsTheEndOfALineThatIsTooLong)
{
    EXPECT_EQ(EndOfLine("/var/mail/ann: 12 entries", 25), "/var/mail/ann: 12 entries");
    EXPECT_EQ(EndOfLine("/var/mail/ann: 12 entries", 24), "…ar/mail/ann: 12 entries");
    EXPECT_EQ(EndOfLine("東京都庁", 8), "東京都庁");
    EXPECT_EQ(EndOfLine("東京都庁", 7), "…京都庁");
    EXPECT_EQ(EndOfLine("東京都庁", 6), "…都庁") << "half a character is none";
    EXPECT_EQ(EndOfLine("ae\u0301e\u0301", 2), "…e\u0301");
    EXPECT_EQ(EndOfLine("abc", 1), "…");
    EXPECT_EQ(EndOfLine("abc", 0), "");
    EXPECT_EQ(EndOfLine("", 0), "");
}

TEST(TerminalText, KeepsSequencesAcrossLines)
{
    EXPECT_EQ(WrapLine("\033[1mbold\033[0m text", 4, 0), "\033[1mbold\033[0m\ntext");
    EXPECT_EQ(WrapLine("ab \033[1mcd ef\033[0m gh", 5, 0), "ab \033[1mcd\nef\033[0m gh");
}

TEST(TerminalText, NeverExceedsTheWidthAndLosesNothing)
{
    const std::string text = "Zebra crossing in Zürich 東京の会議は明日 http://www.example.org/a/very/long/address "
                             "e\u0301e\u0301e\u0301e\u0301e\u0301 😀😀😀😀😀 \033[1mbold\033[0m end";
    const auto solid = [](std::string all) {
        std::erase_if(all, [](char c) { return c == ' ' || c == '\n'; });
        return all;
    };
    for (size_t columns = 2; columns <= 120; ++columns) {
        const std::string wrapped = IndentLine(text, columns, 4);
        std::istringstream lines(wrapped);
        for (std::string line; std::getline(lines, line);)
            EXPECT_LE(ColumnsOf(line), columns) << line;
        EXPECT_EQ(solid(wrapped), solid(text)) << columns;
    }
}

}  // namespace
}  // namespace pavex
