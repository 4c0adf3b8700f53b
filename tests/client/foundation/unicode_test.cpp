// tests/client/foundation/unicode_test.cpp: every code point there and back, every bad sequence refused.
#include "client/foundation/unicode.h"

#include <gtest/gtest.h>

using namespace pavex::cf;

TEST(Unicode, EveryCodePointSurvivesTheWayThereAndBack)
{
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
        if (IsSurrogate(c))
            continue;
        std::u16string text, back;
        AppendUtf16(c, &text);
        const std::string utf8 = EncodeUtf8(text).value_or("");
        size_t index = 0;
        const bool same = utf8.size() == Utf8Length(c) && DecodeUtf8(utf8, &back) == utf8.size() && back == text &&
                          NextCodePoint(back, &index) == c && index == back.size();
        if (!same)
            FAIL() << std::hex << static_cast<uint32_t>(c);
    }
}

TEST(Unicode, SurrogatesHaveNoUtf8)
{
    for (char16_t unit = 0xD800; unit <= 0xDFFF; ++unit) {
        ASSERT_FALSE(EncodeUtf8(std::u16string(1, unit)));
        std::string bytes;
        AppendUtf8(unit, &bytes);
        std::u16string text;
        ASSERT_EQ(DecodeUtf8(bytes, &text), 0u);
    }
    EXPECT_FALSE(EncodeUtf8(u"\xDC00\xD800"));
}

TEST(Unicode, DecodingStopsAtTheFirstMalformedSequence)
{
    const std::string_view malformed[] = {
        "\x80",
        "\xBF",
        "\xC0\x80",
        "\xC1\xBF",
        "\xC3",
        "\xC3(",
        "\xE0\x80\x80",
        "\xE0\x9F\xBF",
        "\xE2\x82",
        "\xE2\x28\xA1",
        "\xED\xA0\x80",
        "\xED\xBF\xBF",
        "\xF0\x80\x80\x80",
        "\xF0\x8F\xBF\xBF",
        "\xF0\x9F\x98",
        "\xF4\x90\x80\x80",
        "\xF5\x80\x80\x80",
        "\xF8\x88\x80\x80\x80",
        "\xFC\x84\x80\x80\x80\x80",
        "\xFE",
        "\xFF",
        "\xED\xA0\xBD\xED\xB8\x80",
    };
    for (const std::string_view bytes : malformed) {
        std::u16string text;
        EXPECT_EQ(DecodeUtf8("ok" + std::string(bytes), &text), 2u) << testing::PrintToString(bytes);
        EXPECT_EQ(text, u"ok");
    }
}

// All byte strings of one to three bytes against the definition: decode by the bits, then ask whether the
// result encodes to the same bytes.
TEST(Unicode, ExactlyTheWellFormedShortSequencesAreTaken)
{
    const auto wellFormed = [](std::string_view bytes) {
        for (const size_t length : {1, 2, 3}) {
            if (bytes.size() != length)
                continue;
            const auto at = [&bytes](size_t i) { return static_cast<unsigned char>(bytes[i]); };
            constexpr unsigned kPrefix[] = {0, 0x00, 0xC0, 0xE0}, kPrefixMask[] = {0, 0x80, 0xE0, 0xF0};
            if ((at(0) & kPrefixMask[length]) != kPrefix[length])
                return false;
            char32_t c = at(0) & ~kPrefixMask[length];
            for (size_t i = 1; i < length; ++i) {
                if ((at(i) & 0xC0) != 0x80)
                    return false;
                c = c << 6 | (at(i) & 0x3Fu);
            }
            return Utf8Length(c) == length && !IsSurrogate(c);
        }
        return false;
    };
    std::u16string text;
    for (unsigned a = 0x80; a < 0x100; ++a) {
        for (unsigned b = 0; b < 0x100; ++b) {
            const char two[] = {static_cast<char>(a), static_cast<char>(b)};
            text.clear();
            const size_t taken = DecodeUtf8(std::string_view(two, 2), &text);
            ASSERT_EQ(taken == 2, wellFormed(std::string_view(two, 2))) << a << ' ' << b;
            for (unsigned c = 0x7E; c < 0xC2; ++c) {
                const char three[] = {two[0], two[1], static_cast<char>(c)};
                if (wellFormed(std::string_view(two, 2)))
                    continue;
                text.clear();
                if ((DecodeUtf8(std::string_view(three, 3), &text) == 3) != wellFormed(std::string_view(three, 3)))
                    FAIL() << a << ' ' << b << ' ' << c;
            }
        }
    }
}
