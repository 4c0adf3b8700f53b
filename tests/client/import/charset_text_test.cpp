// tests/client/import/charset_text_test.cpp: text in the charsets that mail declares, rightly or not.
#include "client/import/charset_text.h"

#include <gtest/gtest.h>

namespace pavex {
namespace {

using namespace std::string_literals;

struct DeclaredText {
    const char* charset;
    std::string bytes;
    const char* utf8;
};

TEST(CharsetText, DecodesTheDeclaredCharset)
{
    const DeclaredText rows[] = {
        {"utf-8", "caf\xC3\xA9", "café"},
        {"\"UTF-8\"", "caf\xC3\xA9", "café"},
        {"ISO-8859-1", "caf\xE9 \x80", "café €"},  // senders of Latin-1 mean windows-1252
        {"iso-8859-2", "\xBF\xF3\xB3w", "żółw"},
        {"iso-8859-9", "\xDEi\xFE", "Şiş"},
        {"iso-8859-8-i", "\xF9\xEC\xE5\xED", "שלום"},
        {"koi8-r", "\xF0\xF2\xE9", "ПРИ"},
        {"gb2312", "\xE9\x46", "镕"},          // only in GB18030
        {"ks_c_5601-1987", "\x8C\x63", "똠"},  // only in CP949
        {"x-sjis", "\x93\xFA\x96\x7B", "日本"},
        {"big5", "\xAF\xF9", "茶"},
        {"iso-2022-jp", "\x1B$BF|K\\\x1B(B", "日本"},
        {"utf-7", "D+ARs-", "Dě"},
        {"tis-620", "\xA1\xD2", "กา"},
        {"hz-gb-2312", "~{<:~}", "己"},
    };
    for (const DeclaredText& row : rows)
        EXPECT_EQ(Utf8FromBytes(row.bytes, row.charset), row.utf8) << row.charset;
}

TEST(CharsetText, TakesUndeclaredTextForUtf8ElseForTheGuessElseForWindows1252)
{
    EXPECT_EQ(Utf8FromBytes("sm\xC3\xB8r", ""), "smør");
    EXPECT_EQ(Utf8FromBytes("sm\xF8r", ""), "smør");
    EXPECT_EQ(Utf8FromBytes("\xF0\xF2\xE9", "", "koi8-r"), "ПРИ");
    EXPECT_EQ(Utf8FromBytes("sm\xF8r", "", "utf-8"), "smør");
    EXPECT_EQ(Utf8FromBytes("sm\xF8r", "no-such-charset"), "smør");
    EXPECT_EQ(Utf8FromBytes("\x1B$BF|\x1B(B", ""), "日");
}

TEST(CharsetText, BelievesTheBytesWhereTheDeclarationIsWrong)
{
    EXPECT_EQ(Utf8FromBytes("na\xC3\xAFve", "us-ascii"), "naïve");
    EXPECT_EQ(Utf8FromBytes("na\xC3\xAFve", "iso-8859-1"), "naïve");
    EXPECT_EQ(Utf8FromBytes("na\xEFve", "utf-8"), "naïve");
    EXPECT_EQ(Utf8FromBytes("\xE6\x97\xA5\xE6\x9C\xAC \xFF", "utf-8"), "日本 \xEF\xBF\xBD");  // mostly UTF-8
}

TEST(CharsetText, TakesJapaneseThatWasEncodedCharacterByCharacter)
{
    EXPECT_EQ(Utf8FromBytes("\x1B$BF|\x1B(B\x1B$BK\\\x1B(B", "iso-2022-jp"), "日本");
}

TEST(CharsetText, DecodesTextLargerThanAnyBuffer)
{
    std::string bytes;
    std::string expected;
    for (int i = 0; i < 50000; ++i) {
        bytes += "\x94\x39\xFC\x36";  // U+1F600, a surrogate pair inside the converter
        bytes += 'x';
        expected += "\xF0\x9F\x98\x80x";
    }
    EXPECT_TRUE(Utf8FromBytes(bytes, "gb18030") == expected);  // too long to print
}

TEST(CharsetText, RefusesMalformedUtf8)
{
    EXPECT_TRUE(IsUtf8("plain, é, 日, \xF0\x9F\x98\x80"));
    for (const char* bad : {"\xC0\x80", "\xC3", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\x80", "\xE0\x80\x80", "\xFF"})
        EXPECT_FALSE(IsUtf8(bad)) << testing::PrintToString(bad);
}

TEST(CharsetText, CleansLineEndsAndControlCharacters)
{
    EXPECT_EQ(CleanText("a\r\nb\rc\nd\x01"s + "e\0f\tg"s), "a\nb\nc\nd e f\tg");
}

TEST(CharsetText, CutsBetweenCharacters)
{
    EXPECT_EQ(Utf8Prefix("日本", 5), "日");
    EXPECT_EQ(Utf8Prefix("日本", 6), "日本");
    EXPECT_EQ(Utf8Prefix("日本", 2), "");
}

TEST(CharsetText, KnowsWhichCharsetsItKnows)
{
    EXPECT_TRUE(IsKnownCharset("KS_C_5601-1987"));
    EXPECT_FALSE(IsKnownCharset("no-such-charset"));
    EXPECT_FALSE(IsKnownCharset(""));
}

}  // namespace
}  // namespace pavex
