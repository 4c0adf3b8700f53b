// tests/client/store/printable_text_test.cpp: text in which nothing is left that a terminal would obey.
#include "client/store/printable_text.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace pavex {
namespace {

TEST(PrintableText, TakesFromALineWhatATerminalWouldObey)
{
    struct Row {
        const char* text;
        const char* line;
    };
    constexpr Row kRows[] = {
        {"plain", "plain"},
        {"a\nb\tc\x7F\x1B[2J", "a b c  [2J"},
        {"c1 \u0085\u009B31m", "c1   31m"},
        {"line\u2028para\u2029end", "line para end"},
        {"gpj\u202Eexe.\u202C!", "gpjexe.!"},
        {"\u2066a\u2069\u200Eb\u200F\u061C", "ab"},
        {"\uFEFFbom soft\u00ADhyphen zero\u200Bwidth", "bom softhyphen zerowidth"},
        {"tag\U000E0041\U000E007F", "tag"},
        {"می\u200Cخواهم 👩\u200D🌾", "می\u200Cخواهم 👩\u200D🌾"},
        {"\u0600١", "\u0600١"},
        {"é東京😀", "é東京😀"},
        {"bad \xFF\xC2 bytes", "bad \uFFFD\uFFFD bytes"},
        {"", ""},
    };
    for (const auto& [text, line] : kRows)
        EXPECT_EQ(PrintableLine(text), line) << text;
    EXPECT_EQ(PrintableLine(std::string_view("a\0b", 3)), "a b");
}

TEST(PrintableText, KeepsLinesApartWhereThereAreSeveral)
{
    EXPECT_EQ(PrintableLines("one\033[2J\n\n\rtwo\u2028\n"), "one [2J\n\n two \n");
    EXPECT_EQ(PrintableLines("one"), "one");
    EXPECT_EQ(PrintableLines(""), "");
}

TEST(PrintableText, EscapesInJsonWhatATerminalWouldObeyAndNothingElse)
{
    const nlohmann::json value = {{"é\u202E", "\u009B2J\u2028 \U000E0041 \x7F 東\u200D京 \"\\"}};
    const std::string escaped = EscapeUnprintable(value.dump());
    EXPECT_EQ(escaped, R"({"é\u202e":"\u009b2J\u2028 \udb40\udc41 \u007f 東)"
                       "\u200D"
                       R"(京 \"\\"})");
    EXPECT_EQ(nlohmann::json::parse(escaped), value);
    EXPECT_EQ(EscapeUnprintable("{\n  \"a\": 1\n}"), "{\n  \"a\": 1\n}") << "line ends of the layout stay";
}

}  // namespace
}  // namespace pavex
