// tests/client/foundation/string_test.cpp: strings: made, changed, read and compared.
#include "client/foundation/string.h"

#include <array>
#include <clocale>

#include "tests/client/foundation/foundation_fixture.h"

class FoundationString : public FoundationTest {};

namespace {

std::string FromCString(const char* bytes)
{
    const Owned<CFStringRef> string(CFStringCreateWithCString(nullptr, bytes, kCFStringEncodingUTF8));
    if (!string)
        return "(null)";
    std::string units;
    for (const char16_t unit : TextOf(string)) {
        char hex[8];
        std::snprintf(hex, sizeof hex, "%04X ", static_cast<unsigned>(unit));
        units += hex;
    }
    return units;
}

struct Converted {
    CFIndex units;
    std::string bytes;
    bool operator==(const Converted&) const = default;
};

Converted Bytes(std::u16string_view text, CFIndex room = 1000, UInt8 loss = 0)
{
    const auto string = Make(text);
    std::string buffer(1000, '#');
    CFIndex used = -1;
    const CFIndex units = CFStringGetBytes(string, CFRangeMake(0, CFStringGetLength(string)), kCFStringEncodingUTF8,
                                           loss, 0, reinterpret_cast<UInt8*>(buffer.data()), room, &used);
    EXPECT_EQ(buffer.substr(static_cast<size_t>(used)), std::string(1000 - static_cast<size_t>(used), '#'))
        << "written behind the end";
    return {units, buffer.substr(0, static_cast<size_t>(used))};
}

int Compare(std::u16string_view a, std::u16string_view b, CFStringCompareFlags options)
{
    const auto first = Make(a), second = Make(b);
    const CFComparisonResult result = CFStringCompare(first, second, options);
    EXPECT_EQ(CFStringCompare(second, first, options), -result) << "not symmetric";
    return static_cast<int>(result);
}
int CompareNoCase(std::u16string_view a, std::u16string_view b)
{
    return Compare(a, b, kCFCompareCaseInsensitive);
}

std::pair<CFIndex, std::u16string> Replace(std::u16string_view text, std::u16string_view find, std::u16string_view with,
                                           CFIndex location = 0, CFIndex length = -1)
{
    const Owned<CFMutableStringRef> string(CFStringCreateMutableCopy(nullptr, 0, Make(text)));
    const CFRange range = CFRangeMake(location, length < 0 ? static_cast<CFIndex>(text.size()) - location : length);
    const CFIndex count = CFStringFindAndReplace(string, Make(find), Make(with), range, 0);
    return {count, TextOf(string)};
}
using Replaced = std::pair<CFIndex, std::u16string>;

}  // namespace

TEST_F(FoundationString, KeepsAnyUnitsItIsMadeOf)
{
    constexpr std::u16string_view units(u"a\xD800\0\xFFFE\xFEFF\xDC00z", 7);
    EXPECT_EQ(TextOf(Make(units)), units);
    const Owned<CFStringRef> empty(CFStringCreateWithCharacters(nullptr, nullptr, 0));
    EXPECT_EQ(CFStringGetLength(empty), 0);
}

TEST_F(FoundationString, CopiesWhatItIsMadeOf)
{
    UniChar units[] = {'a', 'b'};
    const Owned<CFStringRef> string(CFStringCreateWithCharacters(nullptr, units, 2));
    units[0] = 'x';
    EXPECT_EQ(TextOf(string), u"ab");
}

TEST_F(FoundationString, DecodesUtf8Strictly)
{
    EXPECT_EQ(FromCString(""), "");
    EXPECT_EQ(FromCString("A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"), "0041 00E9 20AC D83D DE00 ");
    EXPECT_EQ(FromCString("e\xCC\x81"), "0065 0301 ");  // not composed
    EXPECT_EQ(FromCString("\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xB7\x90"), "FFFE FFFF FDD0 ");
    for (const char* malformed : {"ab\xC3", "\x80", "\xC0\xAF", "\xED\xA0\x80", "\xED\xA0\xBD\xED\xB8\x80",
                                  "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "\xFE", "\xFF", "ab\xE2\x82"})
        EXPECT_EQ(FromCString(malformed), "(null)") << testing::PrintToString(malformed);
}

TEST_F(FoundationString, DropsOneLeadingByteOrderMark)
{
    EXPECT_EQ(FromCString("\xEF\xBB\xBF"), "");
    EXPECT_EQ(FromCString("\xEF\xBB\xBF"
                          "a"),
              "0061 ");
    EXPECT_EQ(FromCString("\xEF\xBB\xBF\xEF\xBB\xBF"
                          "a"),
              "FEFF 0061 ");
    EXPECT_EQ(FromCString("a\xEF\xBB\xBF"), "0061 FEFF ");
}

TEST_F(FoundationString, KnowsNoOtherEncodingThanUtf8)
{
    EXPECT_EQ(CFStringCreateWithCString(nullptr, "a", kCFStringEncodingInvalidId), nullptr);
    EXPECT_EQ(CFStringGetSystemEncoding(), kCFStringEncodingUTF8);
    CFIndex used = -1;
    EXPECT_EQ(CFStringGetBytes(CFSTR("ab"), CFRangeMake(0, 2), 0x12345, '?', 0, nullptr, 0, &used), 0);
    EXPECT_EQ(used, 0);
    char buffer[8] = "xxxx";
    EXPECT_FALSE(CFStringGetCString(CFSTR("ab"), buffer, sizeof buffer, 0x12345));
    EXPECT_EQ(buffer[0], '\0');
}

TEST_F(FoundationString, AMutableCopyIsIndependent)
{
    const auto original = Make(u"one two");
    const Owned<CFMutableStringRef> copy(CFStringCreateMutableCopy(nullptr, 3, original));
    EXPECT_EQ(TextOf(copy), u"one two");  // a small limit does not cut
    EXPECT_EQ(CFStringFindAndReplace(copy, CFSTR("one"), CFSTR("1"), CFRangeMake(0, 7), 0), 1);
    EXPECT_EQ(TextOf(copy), u"1 two");
    EXPECT_EQ(TextOf(original), u"one two");
}

TEST_F(FoundationString, ReplacesEveryMatchOnce)
{
    EXPECT_EQ(Replace(u"Pavex:///R//U", u"Pavex:///", u""), (Replaced{1, u"R//U"}));
    EXPECT_EQ(Replace(u"R//U", u"//", u"/"), (Replaced{1, u"R/U"}));
    EXPECT_EQ(Replace(u"a////b", u"//", u"/"), (Replaced{2, u"a//b"}));  // what was put in is not searched
    EXPECT_EQ(Replace(u"aaa", u"aa", u"b"), (Replaced{1, u"ba"}));       // no overlap
    EXPECT_EQ(Replace(u"aXa", u"a", u"aa"), (Replaced{2, u"aaXaa"}));
    EXPECT_EQ(Replace(u"abc", u"x", u"y"), (Replaced{0, u"abc"}));
    EXPECT_EQ(Replace(u"abc", u"", u"y"), (Replaced{0, u"abc"}));
    EXPECT_EQ(Replace(u"", u"a", u"y"), (Replaced{0, u""}));
    EXPECT_EQ(Replace(u"abc", u"B", u"y"), (Replaced{0, u"abc"}));
    EXPECT_EQ(Replace(u"aaa", u"aaa", u""), (Replaced{1, u""}));
}

TEST_F(FoundationString, ReplacesOnlyWhatLiesWhollyInTheRange)
{
    EXPECT_EQ(Replace(u"ab ab ab", u"ab", u"x", 1, 5), (Replaced{1, u"ab x ab"}));
    EXPECT_EQ(Replace(u"abab", u"ab", u"x", 0, 3), (Replaced{1, u"xab"}));
    EXPECT_EQ(Replace(u"abab", u"ab", u"x", 4, 0), (Replaced{0, u"abab"}));
}

TEST_F(FoundationString, ReplacesSingleUnitsEvenInsideCharacters)
{
    EXPECT_EQ(Replace(u"\xD83D\xDE00", u"\xDE00", u"z"), (Replaced{1, u"\xD83Dz"}));
    EXPECT_EQ(Replace(u"e\u0301", u"e", u"a"), (Replaced{1, u"a\u0301"}));
    EXPECT_EQ(Replace(u"\r\n", u"\n", u"-"), (Replaced{1, u"\r-"}));
}

TEST_F(FoundationString, ReplacesItsOwnTextByItself)
{
    const Owned<CFMutableStringRef> string(CFStringCreateMutableCopy(nullptr, 0, CFSTR("ab")));
    EXPECT_EQ(CFStringFindAndReplace(string, string, string, CFRangeMake(0, 2), 0), 1);
    EXPECT_EQ(TextOf(string), u"ab");
}

TEST_F(FoundationString, CountsLengthInUtf16Units)
{
    EXPECT_EQ(CFStringGetLength(Make(u"\U0001F600")), 2);
    EXPECT_EQ(CFStringGetLength(Make(std::u16string_view(u"a\0b", 3))), 3);
}

TEST_F(FoundationString, CopiesExactlyTheUnitsOfARange)
{
    std::array<UniChar, 4> buffer{1, 1, 1, 1};
    CFStringGetCharacters(Make(u"a\xD83D\xDE00z"), CFRangeMake(2, 2), buffer.data());
    EXPECT_EQ(buffer, (std::array<UniChar, 4>{0xDE00, 'z', 1, 1}));
    CFStringGetCharacters(CFSTR("abc"), CFRangeMake(1, 0), nullptr);
    CFStringGetCharacters(CFSTR("abc"), CFRangeMake(2, 100), buffer.data());  // nothing outside is read
    EXPECT_EQ(buffer, (std::array<UniChar, 4>{'c', 'z', 1, 1}));
}

TEST_F(FoundationString, ConvertsToUtf8UpToALoneSurrogate)
{
    EXPECT_EQ(Bytes(u"h\u00E9\u20AC\U0001F600"), (Converted{5, "h\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"}));
    EXPECT_EQ(Bytes(u"abc\xD800"
                    u"de"),
              (Converted{3, "abc"}));
    EXPECT_EQ(Bytes(u"abc\xD800"
                    u"de",
                    1000, '?'),
              (Converted{3, "abc"}));
    EXPECT_EQ(Bytes(u"\xD800\xD83D\xDE00"), (Converted{0, ""}));
    EXPECT_EQ(Bytes(u"a\xDE00"), (Converted{1, "a"}));
    EXPECT_EQ(Bytes(std::u16string_view(u"a\0\xFFFE\xFFFF", 4)),
              (Converted{4, std::string("a\0\xEF\xBF\xBE\xEF\xBF\xBF", 8)}));
    EXPECT_EQ(Bytes(u"\uFEFFa"), (Converted{2, "\xEF\xBB\xBF"
                                               "a"}));
}

TEST_F(FoundationString, NeverWritesPartOfACharacter)
{
    EXPECT_EQ(Bytes(u"a\U0001F600", 4), (Converted{1, "a"}));
    EXPECT_EQ(Bytes(u"a\U0001F600", 5), (Converted{3, "a\xF0\x9F\x98\x80"}));
    EXPECT_EQ(Bytes(u"\u20AC\u20AC", 5), (Converted{1, "\xE2\x82\xAC"}));
    EXPECT_EQ(Bytes(u"abc", 0), (Converted{0, ""}));
}

TEST_F(FoundationString, AnswersHowMuchRoomAConversionNeeds)
{
    CFIndex used = -1;
    EXPECT_EQ(
        CFStringGetBytes(Make(u"\u00E9\xD800"), CFRangeMake(0, 2), kCFStringEncodingUTF8, 0, 0, nullptr, 0, &used), 1);
    EXPECT_EQ(used, 2);
    EXPECT_EQ(CFStringGetBytes(CFSTR("abc"), CFRangeMake(1, 2), kCFStringEncodingUTF8, 0, 1, nullptr, 0, nullptr), 2);
    // A pair that the range cuts counts as a lone surrogate.
    EXPECT_EQ(CFStringGetBytes(Make(u"a\U0001F600"), CFRangeMake(0, 2), kCFStringEncodingUTF8, 0, 0, nullptr, 0, &used),
              1);
    EXPECT_EQ(used, 1);
}

TEST_F(FoundationString, GivesACStringOnlyWhole)
{
    char buffer[8] = "xxxxxxx";
    EXPECT_TRUE(CFStringGetCString(CFSTR("abc"), buffer, 4, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer, "abc");
    EXPECT_FALSE(CFStringGetCString(CFSTR("abcd"), buffer, 4, kCFStringEncodingUTF8));
    EXPECT_EQ(buffer[0], '\0');
    buffer[0] = 'x';
    EXPECT_FALSE(CFStringGetCString(CFSTR("a"), buffer, 0, kCFStringEncodingUTF8));
    EXPECT_EQ(buffer[0], 'x');
    EXPECT_FALSE(CFStringGetCString(Make(u"\u00E9"), buffer, 1, kCFStringEncodingUTF8));
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_FALSE(CFStringGetCString(Make(u"a\xD800"), buffer, 8, kCFStringEncodingUTF8));
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_TRUE(CFStringGetCString(Make(std::u16string_view(u"a\0b", 3)), buffer, 4, kCFStringEncodingUTF8));
    EXPECT_EQ(std::string(buffer, 4), std::string("a\0b\0", 4));
}

TEST_F(FoundationString, ComparesByUnitsWithoutOptions)
{
    EXPECT_EQ(Compare(u"a", u"a", 0), 0);
    EXPECT_EQ(Compare(u"", u"a", 0), -1);
    EXPECT_EQ(Compare(u"ab", u"abc", 0), -1);
    EXPECT_EQ(Compare(u"\uFFFD", u"\U0001F600", 0), 1);
    EXPECT_EQ(Compare(u"\u00E9", u"e\u0301", 0), 1);
    EXPECT_EQ(Compare(u"Z", u"a", 0), -1);
    EXPECT_EQ(Compare(std::u16string_view(u"a\0b", 3), std::u16string_view(u"a\0c", 3), 0), -1);
}

TEST_F(FoundationString, FoldsCaseByUnicode)
{
    const std::pair<std::u16string_view, std::u16string_view> equal[] = {
        {u"HeLLo", u"hEllO"},
        {u"stra\u00DFe", u"STRASSE"},
        {u"\u1E9E", u"ss"},
        {u"\uFB01", u"FI"},
        {u"\u00B5", u"\u03BC"},
        {u"\u212A", u"k"},
        {u"\u212B", u"\u00E5"},
        {u"\u017F", u"S"},
        {u"\u03C2", u"\u03A3"},
        {u"\u0130", u"i\u0307"},
        {u"\u01C5", u"\u01C4"},
        {u"\u01C6", u"\u01C4"},
        {u"\u13A0", u"\uAB70"},
        {u"\u10D0", u"\u1C90"},
        {u"\u0561", u"\u0531"},
        {u"\uFF21", u"\uFF41"},
        {u"\U00010400", u"\U00010428"},
    };
    for (const auto& [a, b] : equal)
        EXPECT_EQ(CompareNoCase(a, b), 0) << testing::PrintToString(std::u16string(a));
    const std::pair<std::u16string_view, std::u16string_view> different[] = {
        {u"\u0131", u"i"},       {u"\u0131", u"I"},    {u"\u0130", u"i"},    {u"\uFF21", u"A"}, {u"\u00E9", u"e"},
        {u"\u00E9", u"e\u0301"}, {u"a\u00ADb", u"ab"}, {u"a\u200Bb", u"ab"}, {u"a", u"ab"},     {u"", u"a"},
    };
    for (const auto& [a, b] : different)
        EXPECT_NE(CompareNoCase(a, b), 0) << testing::PrintToString(std::u16string(a));
    EXPECT_NE(CompareNoCase(std::u16string_view(u"a\0", 2), u"a"), 0);
}

TEST_F(FoundationString, OrdersFoldedTextsByCodePoint)
{
    EXPECT_EQ(CompareNoCase(u"_", u"Z"), -1);
    EXPECT_EQ(CompareNoCase(u"_", u"a"), -1);
    EXPECT_EQ(CompareNoCase(u"B", u"a"), 1);
    EXPECT_EQ(CompareNoCase(u"\uFFFD", u"\U0001F600"), -1);
    EXPECT_EQ(CompareNoCase(u"ab", u"ABC"), -1);
}

TEST_F(FoundationString, TheLocaleDoesNotChangeWhatIsEqual)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    setenv("LC_ALL", "tr_TR.UTF-8", 1);
    std::setlocale(LC_ALL, "");
    EXPECT_EQ(CompareNoCase(u"TITLE", u"title"), 0);
    unsetenv("LC_ALL");
    std::setlocale(LC_ALL, before.c_str());
}
