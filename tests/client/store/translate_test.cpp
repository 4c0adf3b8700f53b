// tests/client/store/translate_test.cpp: the character-set calls on caller's buffers.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "client/store/charset.h"
#include "platform/store.h"

namespace {

const std::string kUtf8 = "a\xC3\xA9\xF0\x9F\x98\x80";
const std::string kScs = "a\xC3\xA9\xED\xA0\xBD\xED\xB8\x80";
const std::u16string kUtf16 = u"a\u00E9\U0001F600";

std::string Bytes(const std::u16string& text)
{
    std::string bytes(text.size() * 2, '\0');
    std::memcpy(bytes.data(), text.data(), bytes.size());
    return bytes;
}

// With a mark behind the room: nothing is written outside of it.
std::string Translate(WORD mode, const std::string& source, WORD room)
{
    std::string target(room + 8u, '#');
    const WORD written = OSTranslate(mode, source.data(), static_cast<WORD>(source.size()), target.data(), room);
    EXPECT_LE(written, room);
    EXPECT_EQ(target.substr(room), "########");
    return target.substr(0, written);
}

}  // namespace

TEST(OSTranslate, ConvertsInEveryMode)
{
    EXPECT_EQ(Translate(kTranslateNativeToScs, kUtf8, 100), kScs);
    EXPECT_EQ(Translate(kTranslateScsToNative, kScs, 100), kUtf8);
    EXPECT_EQ(Translate(kTranslateScsToUtf16, kScs, 100), Bytes(kUtf16));
    EXPECT_EQ(Translate(kTranslateUtf16ToScs, Bytes(kUtf16), 100), kScs);
    EXPECT_EQ(Translate(kTranslateScsToUtf8, kScs, 100), kUtf8);
    EXPECT_EQ(Translate(99, kScs, 100), "");
}

TEST(OSTranslate, WritesOnlyWholeCharactersIntoASmallRoom)
{
    for (WORD room = 0; room < 20; ++room) {
        EXPECT_EQ(Translate(kTranslateNativeToScs, kUtf8, room), room < 1   ? ""
                                                                 : room < 3 ? "a"
                                                                 : room < 9 ? "a\xC3\xA9"
                                                                            : kScs);
        const std::u16string wide = room < 2 ? u"" : room < 4 ? u"a" : room < 8 ? u"a\u00E9" : kUtf16;
        EXPECT_EQ(Translate(kTranslateScsToUtf16, kScs, room), Bytes(wide));
    }
}

TEST(OSTranslate, TakesATextCutThroughACharacterAsMalformed)
{
    EXPECT_EQ(Translate(kTranslateScsToUtf8, kScs.substr(0, 2), 100), "a\xEF\xBF\xBD");
    EXPECT_EQ(Translate(kTranslateUtf16ToScs, Bytes(kUtf16).substr(0, 3), 100), "a\xEF\xBF\xBD");
}

TEST(OSTranslate, FillsTheLargestRoom)
{
    const std::string source(65535, 'x');
    EXPECT_EQ(Translate(kTranslateScsToUtf8, source, 65535), source);
    EXPECT_EQ(Translate(kTranslateScsToUtf16, source, 60000).size(), 60000u);
}

TEST(OSUnicodeToSCS32, ConvertsAndCutsBetweenCharacters)
{
    uint16_t units[4];
    std::memcpy(units, kUtf16.data(), sizeof units);
    char target[16];
    EXPECT_EQ(std::string(target, OSUnicodeToSCS32(units, 8, target, sizeof target)), kScs);
    EXPECT_EQ(std::string(target, OSUnicodeToSCS32(units, 8, target, 8)), "a\xC3\xA9");
    EXPECT_EQ(OSUnicodeToSCS32(units, 0, target, 8), 0u);
}

TEST(OSNextCharacter, StepsOverWholeCharactersAndStaysAtTheEnd)
{
    const char* position = kScs.c_str();
    std::vector<ptrdiff_t> steps;
    for (int i = 0; i < 5; ++i) {
        steps.push_back(position - kScs.c_str());
        position = OSNextCharacter(position);
    }
    EXPECT_EQ(steps, (std::vector<ptrdiff_t>{0, 1, 3, 9, 9}));
    const char cut[] = "\xED\xA0";
    EXPECT_EQ(OSNextCharacter(cut), cut + 2);
}
