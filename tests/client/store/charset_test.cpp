// tests/client/store/charset_test.cpp: SCS against ICU's CESU-8, malformed text, and cuts.
#include "client/store/charset.h"

#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <string>
#include <vector>

using namespace pavex;

namespace {

std::string IcuConvert(const char* charset, const std::u16string& utf16)
{
    UErrorCode error = U_ZERO_ERROR;
    UConverter* const converter = ucnv_open(charset, &error);
    std::string bytes(utf16.size() * 3 + 16, '\0');
    const int32_t length = ucnv_fromUChars(converter, bytes.data(), static_cast<int32_t>(bytes.size()), utf16.data(),
                                           static_cast<int32_t>(utf16.size()), &error);
    ucnv_close(converter);
    EXPECT_TRUE(U_SUCCESS(error)) << u_errorName(error);
    bytes.resize(static_cast<size_t>(length));
    return bytes;
}

std::u16string EveryCharacter()
{
    std::u16string text;
    for (char32_t c = 1; c <= 0x10FFFF; ++c) {
        if (c >= 0xD800 && c < 0xE000)
            continue;
        if (c < 0x10000) {
            text += static_cast<char16_t>(c);
        } else {
            text += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            text += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        }
    }
    return text;
}

const std::string kReplacementCharacter = "\xEF\xBF\xBD";

}  // namespace

TEST(Charset, IsCesu8AsIcuKnowsItForEveryCharacter)
{
    const std::u16string text = EveryCharacter();
    const std::string scs = IcuConvert("CESU-8", text);
    const std::string utf8 = IcuConvert("UTF-8", text);
    EXPECT_TRUE(ScsFromUtf16(text) == scs);
    EXPECT_TRUE(Utf16FromScs(scs) == text);
    EXPECT_TRUE(ScsFromUtf8(utf8) == scs);
    EXPECT_TRUE(Utf8FromScs(scs) == utf8);
}

TEST(Charset, KeepsANulInsideAText)
{
    const std::string text("a\0b", 3);
    EXPECT_EQ(ScsFromUtf8(text), text);
    EXPECT_EQ(Utf16FromScs(text), std::u16string(u"a\0b", 3));
}

TEST(Charset, ReplacesEachMalformedPartOfUtf8ByOneCharacter)
{
    const std::string r = kReplacementCharacter;
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"a\x80z", "a" + r + "z"},            // a lonely continuation
        {"a\xC3", "a" + r},                   // cut off
        {"\xE2\x82z", r + "z"},               // broken off: one for the whole beginning
        {"\xC0\xAF", r + r},                  // overlong
        {"\xE0\x80\x80", r + r + r},          // overlong
        {"\xED\xA0\x80", r + r + r},          // a surrogate
        {"\xF0\x9F\x98z", r + "z"},           // broken off
        {"\xF4\x90\x80\x80", r + r + r + r},  // above U+10FFFF
        {"\xFF\xFE", r + r},
    };
    for (const auto& [bad, expected] : cases)
        EXPECT_EQ(ScsFromUtf8(bad), expected);
}

TEST(Charset, ReplacesLonelySurrogatesAndFourByteFormsInScs)
{
    const std::string r = kReplacementCharacter;
    EXPECT_EQ(Utf8FromScs("\xED\xA0\xBDz"), r + "z");
    EXPECT_EQ(Utf8FromScs("\xED\xB8\x80z"), r + "z");
    EXPECT_EQ(Utf8FromScs("\xED\xA0\xBD\xED\xA0\xBD\xED\xB8\x80"), r + "\xF0\x9F\x98\x80");
    EXPECT_EQ(Utf8FromScs("\xF0\x9F\x98\x80"), r + r + r + r);
    EXPECT_EQ(Utf8FromScs("\xED\xA0\xBD\xED"), r + r);
}

TEST(Charset, ReplacesLonelyUtf16Surrogates)
{
    EXPECT_EQ(ScsFromUtf16(std::u16string{u'a', char16_t{0xD83D}, u'b', char16_t{0xDE00}}),
              "a" + kReplacementCharacter + "b" + kReplacementCharacter);
    EXPECT_EQ(ScsFromUtf16(std::u16string{char16_t{0xD83D}}), kReplacementCharacter);
}

TEST(Charset, CutsOnlyBetweenCharacters)
{
    const std::string text = ScsFromUtf8("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z");  // 1, 2, 3, 6 and 1 bytes
    std::vector<size_t> cuts;
    for (size_t most = 0; most <= text.size() + 1; ++most)
        cuts.push_back(ScsPrefix(text, most));
    EXPECT_EQ(cuts, (std::vector<size_t>{0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 6, 6, 12, 13, 13}));
}

TEST(Charset, CutsMalformedTextWithinItsLimit)
{
    const std::string continuations(100, '\x80');
    EXPECT_EQ(ScsPrefix(continuations, 50), 50u);
    EXPECT_EQ(ScsPrefix("\xED\xA0\xBD\xED\xA0\xBD", 3), 3u);  // two high surrogates are no pair
}

TEST(Charset, ConvertsLongTextsWhole)
{
    std::string utf8;
    while (utf8.size() < 200000)
        utf8 += "grün \xF0\x9F\x98\x80 ";
    EXPECT_EQ(Utf8FromScs(ScsFromUtf8(utf8)), utf8);
}
