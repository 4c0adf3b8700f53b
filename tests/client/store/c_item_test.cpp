// tests/client/store/c_item_test.cpp
#include <cmath>
#include <cstring>
#include <limits>

#include "client/store/open_note.h"
#include "client/store/richtext.h"
#include "tests/client/store/store_fixture.h"

namespace {

using namespace pavex;
using testing::ElementsAre;

class ItemCalls : public StoreTest {
protected:
    // The note's own handle, kept until the test ends.
    NOTEHANDLE Opened(std::vector<Item> items)
    {
        const uint32_t id = data_.AddNote(std::move(items));
        notes_.push_back(std::make_unique<OpenedNote>(db_, id));
        return *notes_.back();
    }
    static std::string Text(NOTEHANDLE note, const char* name, WORD maxText = 60)
    {
        char text[64];
        std::memset(text, 'x', sizeof text);
        const WORD length = VLTItemGetText(note, name, text, maxText);
        EXPECT_EQ(text[length], '\0');
        return {text, length};
    }
    static std::string AllText(NOTEHANDLE note, const char* name, char separator = '|')
    {
        char text[200];
        const WORD length = VLTItemConvertToText(note, name, text, sizeof text - 1, separator);
        EXPECT_EQ(text[length], '\0');
        return {text, length};
    }

    TestDatabase data_{NewPath()};
    OpenedDatabase db_{data_.Path()};
    std::vector<std::unique_ptr<OpenedNote>> notes_;
};

TEST_F(ItemCalls, InfoFindsTheFirstItemOfANameWithoutRegardToCase)
{
    const NOTEHANDLE note = Opened({NumberItem("N", 1), TextItem("Subject", "a"), NumberItem("SUBJECT", 2)});
    WORD type = 0;
    DWORD bytes = 0;
    EXPECT_EQ(VLTItemInfo(note, "subjectX", 7, nullptr, &type, nullptr, &bytes), 0);
    EXPECT_EQ(type, kTypeText);
    EXPECT_EQ(bytes, 3U);
    EXPECT_EQ(VLTItemInfo(note, "subjectX", 8, nullptr, &type, nullptr, &bytes), kStatusItemNotFound);
    EXPECT_EQ(VLTItemInfo(note, "", 0, nullptr, nullptr, nullptr, nullptr), kStatusItemNotFound);
    EXPECT_EQ(VLTItemInfo(note, "n", 1, nullptr, nullptr, nullptr, nullptr), 0);
}

TEST_F(ItemCalls, AnswerBadHandlesWithNothing)
{
    char text[8] = "1234567";
    TIMEDATE time = {{7, 7}};
    const auto never = [](WORD, WORD, const char*, WORD, const void*, DWORD, void*) {
        ADD_FAILURE();
        return STATUS{0};
    };
    for (const NOTEHANDLE note : {0U, 0xFFFFFFF0U}) {
        EXPECT_EQ(VLTItemInfo(note, "A", 1, nullptr, nullptr, nullptr, nullptr), kStatusBadHandle);
        EXPECT_EQ(VLTItemGetText(note, "A", text, 7), 0);
        EXPECT_STREQ(text, "");
        EXPECT_EQ(VLTItemConvertToText(note, "A", text, 7, '|'), 0);
        EXPECT_EQ(VLTItemGetTextListEntry(note, "A", 0, text, 7), 0);
        EXPECT_EQ(VLTItemGetTextListEntries(note, "A"), 0);
        EXPECT_EQ(VLTItemGetLong(note, "A", 5), 5);
        EXPECT_FALSE(VLTItemGetTime(note, "A", &time));
        EXPECT_EQ(time.Innards[0], 7U);
        EXPECT_EQ(VLTItemScan(note, never, nullptr), kStatusBadHandle);
    }
}

TEST_F(ItemCalls, TextIsTheFirstValueOfAList)
{
    const TIMEDATE time = TimeFromUnix(1'173'103'200);
    const NOTEHANDLE note = Opened({TextItem("T", "one\ntwo"), TextListItem("L", {"first", "second"}),
                                    NumberItem("N", 2.5), TimeItem("Time", time), TimeListItem("Times", {time, time}),
                                    RichTextItem("Body", "xx"), FormulaItem("F", "1 + 1"), TextListItem("None", {}),
                                    TimeListItem("NoTimes", {}), TextItem("Empty", "")});
    EXPECT_EQ(Text(note, "T"), std::string("one\0two", 7));
    EXPECT_EQ(Text(note, "l"), "first");
    EXPECT_EQ(Text(note, "N"), "2.5");
    EXPECT_FALSE(Text(note, "Time").empty());
    EXPECT_EQ(Text(note, "Times"), Text(note, "Time"));
    for (const char* name : {"Body", "F", "None", "NoTimes", "Empty", "Absent"})
        EXPECT_EQ(Text(note, name), "") << name;
}

TEST_F(ItemCalls, TextIsCutBetweenCharacters)
{
    const NOTEHANDLE note = Opened({TextItem("T", "aé😀b")});
    EXPECT_EQ(Text(note, "T", 0), "");
    EXPECT_EQ(Text(note, "T", 2), "a");
    EXPECT_EQ(Text(note, "T", 3), "aé");
    EXPECT_EQ(Text(note, "T", 8), "aé") << "half of a surrogate pair is left out";
    EXPECT_EQ(Text(note, "T", 9), "aé\xED\xA0\xBD\xED\xB8\x80");
}

TEST_F(ItemCalls, ConvertToTextJoinsAllValues)
{
    const TIMEDATE time = TimeFromUnix(1'173'103'200);
    const NOTEHANDLE note =
        Opened({TextListItem("L", {"a", "b", ""}), TimeListItem("Times", {time, time}), TextItem("T", "t")});
    EXPECT_EQ(AllText(note, "L"), "a|b|");
    EXPECT_EQ(AllText(note, "L", ','), "a,b,");
    EXPECT_EQ(AllText(note, "Times"), Text(note, "Times") + "|" + Text(note, "Times"));
    EXPECT_EQ(AllText(note, "T"), "t");
    EXPECT_EQ(AllText(note, "Absent"), "");
}

TEST_F(ItemCalls, ListEntriesAreCountedAndReadByNumber)
{
    const NOTEHANDLE note = Opened({TextListItem("L", {"ab", "", "c"}), TextItem("T", "text"), NumberItem("N", 1)});
    char text[8];
    EXPECT_EQ(VLTItemGetTextListEntries(note, "L"), 3);
    EXPECT_EQ(VLTItemGetTextListEntry(note, "L", 0, text, 7), 2);
    EXPECT_STREQ(text, "ab");
    EXPECT_EQ(VLTItemGetTextListEntry(note, "L", 1, text, 7), 0);
    EXPECT_EQ(VLTItemGetTextListEntry(note, "L", 2, text, 7), 1);
    EXPECT_STREQ(text, "c");
    EXPECT_EQ(VLTItemGetTextListEntry(note, "L", 3, text, 7), 0);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(VLTItemGetTextListEntry(note, "L", 0, text, 1), 1);
    EXPECT_EQ(VLTItemGetTextListEntries(note, "T"), 1);
    EXPECT_EQ(VLTItemGetTextListEntry(note, "T", 0, text, 7), 4);
    EXPECT_EQ(VLTItemGetTextListEntries(note, "N"), 0);
    EXPECT_EQ(VLTItemGetTextListEntries(note, "Absent"), 0);
}

TEST_F(ItemCalls, ListEntriesAreTheSameInAnyOrderOfReading)
{
    const NOTEHANDLE note = Opened({TextListItem("L", {"a", "", "bcd", "ef"}), TextListItem("M", {"x", "yz"})});
    const auto entry = [note](const char* name, WORD index) {
        char text[8];
        return std::string(text, VLTItemGetTextListEntry(note, name, index, text, 7));
    };
    EXPECT_EQ(entry("L", 3), "ef");
    EXPECT_EQ(entry("M", 1), "yz");
    EXPECT_EQ(entry("L", 0), "a");
    EXPECT_EQ(entry("L", 2), "bcd");
    EXPECT_EQ(entry("L", 2), "bcd");
    EXPECT_EQ(entry("L", 1), "");
    EXPECT_EQ(entry("M", 0), "x");
    EXPECT_EQ(entry("L", 4), "");
    EXPECT_EQ(entry("L", 3), "ef");
}

TEST_F(ItemCalls, ANewValueOfAListIsReadFromItsBeginning)
{
    const NOTEHANDLE note = Opened({TextListItem("L", {"first", "second"})});
    char text[8];
    ASSERT_EQ(VLTItemGetTextListEntry(note, "L", 1, text, 7), 6);
    ASSERT_EQ(SetOpenItem(note, TextListItem("L", {"a", "b"})), 0);
    ASSERT_EQ(VLTItemGetTextListEntry(note, "L", 1, text, 7), 1);
    EXPECT_STREQ(text, "b");
}

TEST_F(ItemCalls, DamagedListsHaveNoEntries)
{
    const NOTEHANDLE note = Opened({{"A", kTypeTextList, 0, ""},
                                    {"B", kTypeTextList, 0, std::string("\xFF\xFF\1\0", 4)},
                                    {"C", kTypeTextList, 0,
                                     std::string("\2\0\1\0\xFF\xFF"
                                                 "a",
                                                 7)}});
    char text[8];
    EXPECT_EQ(VLTItemGetTextListEntries(note, "A"), 0);
    EXPECT_EQ(VLTItemGetTextListEntries(note, "B"), 0);
    EXPECT_EQ(VLTItemGetTextListEntry(note, "C", 0, text, 7), 1);
    EXPECT_EQ(VLTItemGetTextListEntry(note, "C", 1, text, 7), 0);
    EXPECT_EQ(VLTItemGetText(note, "B", text, 7), 0);
}

TEST_F(ItemCalls, LongIsANumberTruncatedOrTheDefault)
{
    const double bound = 9223372036854775808.0;
    const NOTEHANDLE note = Opened({NumberItem("A", 2.9),
                                    NumberItem("B", -2.9),
                                    NumberItem("Nan", std::nan("")),
                                    NumberItem("Big", bound),
                                    NumberItem("Small", -bound),
                                    NumberItem("Inf", -INFINITY),
                                    TextItem("T", "12"),
                                    {"R", kTypeNumberRange, 0, std::string("\1\0\0\0", 4) + NumberItem("", 7).value}});
    EXPECT_EQ(VLTItemGetLong(note, "A", 1), 2);
    EXPECT_EQ(VLTItemGetLong(note, "B", 1), -2);
    EXPECT_EQ(VLTItemGetLong(note, "R", 1), 7);
    EXPECT_EQ(VLTItemGetLong(note, "Small", 1), std::numeric_limits<long>::min());
    for (const char* name : {"Nan", "Big", "Inf", "T", "Absent"})
        EXPECT_EQ(VLTItemGetLong(note, name, 20), 20) << name;
}

TEST_F(ItemCalls, TimeIsTheFirstOfATimeItem)
{
    const TIMEDATE time = TimeFromUnix(1'000'000'000, 7);
    const NOTEHANDLE note = Opened({TimeItem("A", time), TimeListItem("B", {time, kMinimumTime}),
                                    TimeListItem("None", {}), TextItem("T", "2001")});
    TIMEDATE read{};
    EXPECT_TRUE(VLTItemGetTime(note, "A", &read));
    EXPECT_EQ(read, time);
    read = kMinimumTime;
    EXPECT_TRUE(VLTItemGetTime(note, "B", &read));
    EXPECT_EQ(read, time);
    for (const char* name : {"None", "T", "Absent"})
        EXPECT_FALSE(VLTItemGetTime(note, name, &read)) << name;
    EXPECT_EQ(read, time);
}

TEST_F(ItemCalls, ScanShowsEveryItemInStoredOrderUntilStopped)
{
    Item sealed = TextItem("B", std::string(5000, 'x'));
    sealed.flags = kItemSealed;  // a flag only: the note is not sealed
    const NOTEHANDLE note = Opened({TextItem("A", "1"), sealed, TextItem("a", "2")});
    struct Seen {
        std::vector<Item> items;
        size_t stopAfter;
    } seen = {{}, 99};
    const auto see = [](WORD, WORD flags, const char* name, WORD nameLength, const void* value, DWORD valueBytes,
                        void* context) {
        auto* const all = static_cast<Seen*>(context);
        WORD type = 0;
        std::memcpy(&type, value, sizeof type);
        all->items.push_back({std::string(name, nameLength), type, flags,
                              std::string(static_cast<const char*>(value) + 2, valueBytes - 2)});
        return all->items.size() == all->stopAfter ? kStatusStopped : kStatusOk;
    };
    EXPECT_EQ(VLTItemScan(note, see, &seen), 0);
    EXPECT_EQ(seen.items, (std::vector<Item>{TextItem("A", "1"), sealed, TextItem("a", "2")}));
    seen = {{}, 1};
    EXPECT_EQ(VLTItemScan(note, see, &seen), kStatusStopped);
    EXPECT_EQ(seen.items.size(), 1U);
}

}  // namespace
