// tests/client/store/note_test.cpp
#include "client/store/note.h"

#include <gtest/gtest.h>

#include <cmath>

namespace pavex {
namespace {

TEST(Items, KeepLineBreaksAsNulBytes)
{
    const Item item = TextItem("Body", "one\ntwo");
    EXPECT_EQ(item.value, std::string("one\0two", 7));
    EXPECT_EQ(TextValues(item), (std::vector<std::string>{"one\ntwo"}));
}

TEST(Items, KeepCharactersBeyondTheBasicPlaneAsTwoSurrogates)
{
    const Item item = TextItem("Subject", "A😀");
    EXPECT_EQ(item.value, "A\xED\xA0\xBD\xED\xB8\x80");
    EXPECT_EQ(TextValues(item), (std::vector<std::string>{"A😀"}));
}

TEST(Items, LayOutATextListAsCountLengthsAndEntries)
{
    const Item item = TextListItem("SendTo", {"ab", "", "c"});
    EXPECT_EQ(item.value, std::string("\3\0\2\0\0\0\1\0abc", 11));
    EXPECT_EQ(TextValues(item), (std::vector<std::string>{"ab", "", "c"}));
    EXPECT_EQ(TextValues(TextListItem("None", {})), std::vector<std::string>{});
}

TEST(Items, CutListEntriesThatAreLongerThanAWordCanTellBetweenCharacters)
{
    const Item item = TextListItem("L", {std::string(65534, 'x') + "é", "next"});
    const auto values = TextValues(item);
    ASSERT_TRUE(values);
    EXPECT_EQ((*values)[0], std::string(65534, 'x'));
    EXPECT_EQ((*values)[1], "next");
}

TEST(Items, ReadNumbersAndTimesAndTheFirstOfRanges)
{
    EXPECT_EQ(NumberValue(NumberItem("N", -1.5)), -1.5);
    Item range{"N", kTypeNumberRange, 0, std::string("\1\0\0\0", 4) + NumberItem("N", 7).value};
    EXPECT_EQ(NumberValue(range), 7);
    const TIMEDATE a = {{100, 2450000}};
    const TIMEDATE b = {{200, 2450001}};
    const auto times = TimeValues(TimeListItem("T", {a, b}));
    ASSERT_TRUE(times && times->size() == 2);
    EXPECT_EQ((*times)[1].Innards[0], 200U);
    EXPECT_EQ(TimeValues(TimeItem("T", a))->at(0).Innards[1], 2450000U);
    EXPECT_EQ(TimeValues(TimeListItem("T", {}))->size(), 0U);
}

TEST(Items, AreNothingWhenTheirValueIsDamagedOrOfAnotherType)
{
    EXPECT_FALSE(TextValues({"L", kTypeTextList, 0, ""}));
    EXPECT_FALSE(TextValues({"L", kTypeTextList, 0, std::string("\2\0\1\0", 4)}));
    EXPECT_FALSE(TextValues({"L", kTypeTextList, 0, std::string("\1\0\5\0abc", 7)}));
    EXPECT_FALSE(TextValues(NumberItem("N", 1)));
    EXPECT_FALSE(NumberValue({"N", kTypeNumber, 0, "1234567"}));
    EXPECT_FALSE(NumberValue({"N", kTypeNumberRange, 0, std::string("\0\0\0\0", 4)}));
    EXPECT_FALSE(NumberValue(TextItem("N", "12345678")));
    EXPECT_FALSE(TimeValues({"T", kTypeTimeRange, 0, std::string("\1\0\0\0short", 9)}));
    EXPECT_FALSE(TimeValues({"T", kTypeTimeRange, 0, "\1"}));
}

TEST(Note, FindsAndReplacesTheFirstItemOfANameWithoutRegardToCase)
{
    Note note;
    note.items = {TextItem("Subject", "a"), TextItem("SUBJECT", "b")};
    EXPECT_EQ(note.Find("subject"), &note.items[0]);
    EXPECT_EQ(note.Find("subjec"), nullptr);
    note.Set(TextItem("suBject", "c"));
    note.Set(TextItem("Other", "d"));
    EXPECT_EQ(note.items,
              (std::vector<Item>{TextItem("suBject", "c"), TextItem("SUBJECT", "b"), TextItem("Other", "d")}));
}

}  // namespace
}  // namespace pavex
