// tests/content/value_text_test.cpp
#include "content/value_text.h"

#include <gtest/gtest.h>

#include <string>

#include "client/store/charset.h"
#include "content/item_text.h"
#include "tests/content/note_fixture.h"

namespace {

constexpr char kUntouched = '\x55';

struct Join {
    std::string text;
    WORD length;
    bool operator==(const Join&) const = default;
};
std::ostream& operator<<(std::ostream& stream, const Join& join)
{
    return stream << join.length << " \"" << join.text << '"';
}

// Joins into a buffer of the size, and sees that nothing behind it is touched.
Join JoinParts(const std::string& entries, const std::vector<WORD>& lengths, WORD size, int mode)
{
    std::string buffer(size + 16u, kUntouched);
    const WORD length = ParseMultiLineVLTText(entries.data(), lengths.data(), static_cast<WORD>(lengths.size()),
                                              buffer.data(), size, mode);
    EXPECT_EQ(buffer.substr(size), std::string(16, kUntouched));
    return {size == 0 ? std::string() : std::string(buffer.c_str()), length};
}

TEST(JoinParts, SeparatesEntriesAndLineBreaks)
{
    const std::string entries("ab\0c", 4);
    EXPECT_EQ(JoinParts(entries, {1, 3}, 100, kJoinCrLf), (Join{"a\r\nb\r\nc", 7}));
    EXPECT_EQ(JoinParts(entries, {1, 3}, 100, kJoinComma), (Join{"a, b, c", 7}));
    EXPECT_EQ(JoinParts(entries, {1, 3}, 100, 77), (Join{"a, b, c", 7}));
    EXPECT_EQ(JoinParts("ab", {0, 1, 0, 1}, 100, kJoinComma), (Join{", a, , b", 8}));
    EXPECT_EQ(JoinParts(std::string("\0x\0", 3), {3}, 100, kJoinCrLf), (Join{"\r\nx\r\n", 5}));
}

TEST(JoinParts, GivesNothingWithoutEntries)
{
    const WORD length = 1;
    char buffer[8] = "before";
    EXPECT_EQ(JoinParts("", {}, 100, kJoinComma), (Join{"", 0}));
    EXPECT_EQ(ParseMultiLineVLTText(nullptr, &length, 1, buffer, sizeof buffer, kJoinComma), 0);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(ParseMultiLineVLTText("a", nullptr, 1, buffer, sizeof buffer, kJoinComma), 0);
    EXPECT_EQ(ParseMultiLineVLTText("a", &length, 1, nullptr, sizeof buffer, kJoinComma), 0);
}

TEST(JoinParts, StaysInsideEverySizeAndKeepsCharactersAndSeparatorsWhole)
{
    const std::string first = Scs("aé");
    const std::string second = Scs("😀z");
    const std::vector<WORD> lengths = {static_cast<WORD>(first.size()), static_cast<WORD>(second.size())};
    const std::string whole = first + ", " + second;
    for (WORD size = 0; size <= whole.size() + 2; ++size) {
        const Join join = JoinParts(first + second, lengths, size, kJoinComma);
        EXPECT_EQ(join.length, join.text.size());
        EXPECT_LE(join.text.size(), size == 0 ? 0u : size - 1u);
        EXPECT_EQ(join.text, whole.substr(0, join.text.size()));
        EXPECT_EQ(pavex::ScsPrefix(whole, join.text.size()), join.text.size()) << "size " << size;
        EXPECT_NE(join.text, first + ",") << "size " << size;
        if (size > whole.size()) {
            EXPECT_EQ(join.text, whole);
        }
    }
}

using JoinValue = NoteFixture;

struct Value {
    BLOCKID block;
    WORD type;
    DWORD bytes;
};
Value ValueOf(NOTEHANDLE note, const char* item)
{
    Value value{};
    EXPECT_EQ(
        VLTItemInfo(note, item, static_cast<WORD>(strlen(item)), nullptr, &value.type, &value.block, &value.bytes),
        kStatusOk);
    return value;
}

TEST_F(JoinValue, JoinsATextListAndAText)
{
    const NOTEHANDLE note = Open({pavex::TextListItem("List", {"a", "b\nc"}), pavex::TextItem("Text", "one\ntwo")});
    char buffer[64];
    const Value list = ValueOf(note, "List");
    EXPECT_EQ(ParseMultiLineVLTText(list.type, list.block, list.bytes, buffer, sizeof buffer, kJoinCrLf), 7);
    EXPECT_STREQ(buffer, "a\r\nb\r\nc");
    const Value text = ValueOf(note, "Text");
    EXPECT_EQ(ParseMultiLineVLTText(text.type, text.block, text.bytes, buffer, sizeof buffer, kJoinComma), 8);
    EXPECT_STREQ(buffer, "one, two");
}

TEST_F(JoinValue, GivesNothingForWhatIsNotJoined)
{
    const NOTEHANDLE note = Open({pavex::TextListItem("None", {}), pavex::TextItem("Long", std::string(65536, 'x')),
                                  pavex::TextItem("Fits", std::string(65535, 'x')), pavex::NumberItem("Number", 1)});
    static char buffer[65535];
    const Value none = ValueOf(note, "None");
    EXPECT_EQ(ParseMultiLineVLTText(none.type, none.block, none.bytes, buffer, 65535, kJoinComma), 0);
    const Value tooLong = ValueOf(note, "Long");
    EXPECT_EQ(ParseMultiLineVLTText(tooLong.type, tooLong.block, tooLong.bytes, buffer, 65535, kJoinComma), 0);
    const Value fits = ValueOf(note, "Fits");
    EXPECT_EQ(ParseMultiLineVLTText(fits.type, fits.block, fits.bytes, buffer, 65535, kJoinComma), 65534);
    const Value number = ValueOf(note, "Number");
    EXPECT_EQ(ParseMultiLineVLTText(number.type, number.block, number.bytes, buffer, 65535, kJoinComma), 0);
    EXPECT_EQ(ParseMultiLineVLTText(kTypeText, BLOCKID{}, 10, buffer, 65535, kJoinComma), 0);
}

TEST(JoinTextValue, LeavesOutWhatReachesPastADamagedValue)
{
    // Three entries are promised; the second is longer than what is left.
    const std::string damaged("\x03\0\x01\0\x09\0\x01\0abc", 11);
    char buffer[64];
    EXPECT_EQ(JoinTextValue(kTypeTextList, damaged.data(), damaged.size(), buffer, sizeof buffer, kJoinComma), 1);
    EXPECT_STREQ(buffer, "a");
    for (size_t bytes = 0; bytes < 8; ++bytes)
        EXPECT_EQ(JoinTextValue(kTypeTextList, damaged.data(), bytes, buffer, sizeof buffer, kJoinComma), 0) << bytes;
}

}  // namespace
