// tests/client/foundation/strings_table_test.cpp: strings tables, whole and broken.
#include "client/foundation/strings_table.h"

#include <gtest/gtest.h>

#include <map>

using pavex::cf::ParseStrings;
using pavex::cf::StringsTable;

namespace {

using Entries = std::map<std::u16string, std::u16string>;

// The entries of a table without a fault.
Entries Parse(std::string_view bytes)
{
    const StringsTable table = ParseStrings(bytes);
    EXPECT_FALSE(table.fault) << table.fault->line << ": " << table.fault->reason;
    return Entries(table.entries.begin(), table.entries.end());
}

struct Broken {
    Entries entries;
    int line;
    std::string reason;
    bool operator==(const Broken&) const = default;
};
void PrintTo(const Broken& broken, std::ostream* out)
{
    *out << broken.entries.size() << " entries, line " << broken.line << ": " << broken.reason;
}

Broken ParseBroken(std::string_view bytes)
{
    const StringsTable table = ParseStrings(bytes);
    return {Entries(table.entries.begin(), table.entries.end()), table.fault ? table.fault->line : 0,
            table.fault ? table.fault->reason : "(no fault)"};
}

std::string Utf16(std::u16string_view text, bool bigEndian)
{
    std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char16_t unit : text) {
        const char high = static_cast<char>(unit >> 8), low = static_cast<char>(unit & 0xFF);
        bytes.push_back(bigEndian ? high : low);
        bytes.push_back(bigEndian ? low : high);
    }
    return bytes;
}

}  // namespace

TEST(StringsTable, ReadsQuotedAndBareKeys)
{
    EXPECT_EQ(Parse("\"109\" = \"Text\";\n110 = \"Other\";\nKey.a_b-c/d=word;'single' = 'te\"xt';"),
              (Entries{{u"109", u"Text"}, {u"110", u"Other"}, {u"Key.a_b-c/d", u"word"}, {u"single", u"te\"xt"}}));
}

TEST(StringsTable, AnEmptyFileIsAnEmptyTable)
{
    EXPECT_EQ(Parse(""), Entries{});
    EXPECT_EQ(Parse(" \n\t\r\n"), Entries{});
    EXPECT_EQ(Parse("\xEF\xBB\xBF"), Entries{});
    EXPECT_EQ(Parse("// only a comment"), Entries{});
    EXPECT_EQ(Parse("/* only a comment */"), Entries{});
}

TEST(StringsTable, CommentsMayStandBetweenAnyTwoPieces)
{
    EXPECT_EQ(Parse("/* a */ \"k\" // b\n /* \"x\"=\"y\"; */ = /**/ \"v\" // c\n ; // d"), (Entries{{u"k", u"v"}}));
    EXPECT_EQ(Parse("bare/*c*/=/*d*/text// e\n;"), (Entries{{u"bare", u"text"}}));
    EXPECT_EQ(Parse("\"k\" = \"/* no comment */ // none\";"), (Entries{{u"k", u"/* no comment */ // none"}}));
}

TEST(StringsTable, UnderstandsEscapes)
{
    EXPECT_EQ(Parse(R"("a\n\t\"\\b" = "\U00e9\U20AC\UD83D\UDE00\r\a\b\f\v\'\x";)"),
              (Entries{{u"a\n\t\"\\b", u"\u00E9\u20AC\U0001F600\r\a\b\f\v'x"}}));
    EXPECT_EQ(Parse("\"k\" = \"a\\\nb\nc\";"), (Entries{{u"k", u"a\nb\nc"}}));
}

TEST(StringsTable, AKeyAloneIsItsOwnText)
{
    EXPECT_EQ(Parse("\"k\"; b ;"), (Entries{{u"k", u"k"}, {u"b", u"b"}}));
}

TEST(StringsTable, TheLaterOfTwoEntriesWins)
{
    EXPECT_EQ(Parse("k=\"1\";k=\"2\";"), (Entries{{u"k", u"2"}}));
}

TEST(StringsTable, KeepsEmptyTexts)
{
    EXPECT_EQ(Parse("\"k\" = \"\"; \"\" = \"v\";"), (Entries{{u"k", u""}, {u"", u"v"}}));
}

TEST(StringsTable, ReadsUtf8AndBothByteOrdersOfUtf16)
{
    const std::u16string text = u"\"k\" = \"\u00E9\u65E5\U0001F600\"; // \u3042\n";
    const Entries expected{{u"k", u"\u00E9\u65E5\U0001F600"}};
    const std::string utf8 = "\"k\" = \"\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80\"; // \xE3\x81\x82\n";
    EXPECT_EQ(Parse(utf8), expected);
    EXPECT_EQ(Parse("\xEF\xBB\xBF" + utf8), expected);
    EXPECT_EQ(Parse(Utf16(text, false)), expected);
    EXPECT_EQ(Parse(Utf16(text, true)), expected);
}

TEST(StringsTable, TheEntriesBeforeAFaultCount)
{
    const Entries first{{u"a", u"1"}};
    EXPECT_EQ(ParseBroken("a=\"1\";\nb=\"2\"\nc=\"3\";"), (Broken{first, 3, "a ';' is missing"}));
    EXPECT_EQ(ParseBroken("a=\"1\";\nb=;"), (Broken{first, 2, "a key or a text is missing"}));
    EXPECT_EQ(ParseBroken("a=\"1\";\n\n=\"2\";"), (Broken{first, 3, "a key or a text is missing"}));
    EXPECT_EQ(ParseBroken("a=\"1\";\nb = \"never\nended"), (Broken{first, 2, "a quoted text is not closed"}));
    EXPECT_EQ(ParseBroken("a=\"1\";\r\nb = \"ended by \\"), (Broken{first, 2, "a quoted text is not closed"}));
    EXPECT_EQ(ParseBroken("a=\"1\";\r\r/* never\nended"), (Broken{first, 3, "a comment is not closed"}));
    EXPECT_EQ(ParseBroken("a=\"1\";\nb ="), (Broken{first, 2, "the entry is not complete"}));
    EXPECT_EQ(ParseBroken("a=\"1\";\nb"), (Broken{first, 2, "a ';' is missing"}));
    EXPECT_EQ(ParseBroken("a=\"1\";b=\"\\U12G4\";"), (Broken{first, 1, "\\U needs four hexadecimal digits"}));
    EXPECT_EQ(ParseBroken("a=\"1\";b=\"\\U12"), (Broken{first, 1, "\\U needs four hexadecimal digits"}));
    EXPECT_EQ(ParseBroken("a=\"1\";\n{"), (Broken{first, 2, "a key or a text is missing"}));
    EXPECT_EQ(ParseBroken(std::string_view("a=\"1\";\0", 7)), (Broken{first, 1, "a key or a text is missing"}));
}

TEST(StringsTable, BrokenEncodingsAreNamedWhereTheyAre)
{
    const Entries first{{u"a", u"1"}};
    EXPECT_EQ(ParseBroken("a=\"1\";\nb=\"\xC3(\";"), (Broken{first, 2, "malformed UTF-8"}));
    EXPECT_EQ(ParseBroken("a=\"1\";\n\n\xFF"), (Broken{first, 3, "malformed UTF-8"}));
    EXPECT_EQ(ParseBroken("a=\"1\";\n/* \n\xED\xA0\x80 */"), (Broken{first, 3, "malformed UTF-8"}));
    EXPECT_EQ(ParseBroken("a=\"1\";\nb=\xFF"), (Broken{first, 2, "malformed UTF-8"}));
    EXPECT_EQ(ParseBroken(Utf16(u"a=\"1\";\n", false) + "x"), (Broken{first, 2, "the file ends within a UTF-16 unit"}));
    // A fault before the broken bytes is the first one.
    EXPECT_EQ(ParseBroken("a=\"1\"\nb;\xFF"), (Broken{{}, 2, "a ';' is missing"}));
}

TEST(StringsTable, EveryCutOfATableGivesAPrefixOfItsEntries)
{
    const std::string whole = "/* c */ \"k1\" = \"v\\n1\";\n// d\nk2 = \"\xC3\xA9\\U20AC\";\n\"k3\";";
    const Entries all = Parse(whole);
    for (size_t length = 0; length < whole.size(); ++length) {
        const StringsTable table = ParseStrings(std::string_view(whole).substr(0, length));
        for (const auto& [key, text] : table.entries) {
            ASSERT_TRUE(all.contains(key)) << length;
            EXPECT_EQ(all.at(key), text) << length;
        }
    }
}
