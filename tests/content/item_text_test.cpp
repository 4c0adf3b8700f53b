// tests/content/item_text_test.cpp
#include "content/item_text.h"

#include <gtest/gtest.h>

#include <cstring>

#include "content/buffers.h"
#include "tests/content/note_fixture.h"
#include "tests/support/fault_plan.h"

namespace {

using ItemText = NoteFixture;
using testing::Test;

TEST_F(ItemText, ReadsTextListsJoinedAsAsked)
{
    const NOTEHANDLE note = Open({pavex::TextListItem("Names", {"a", "b\nc"}), pavex::TextItem("Subject", "x\ny")});
    char buffer[100];
    EXPECT_EQ(GetMultiLineItem(note, "Names", buffer, sizeof buffer, kJoinCrLf), 7);
    EXPECT_STREQ(buffer, "a\r\nb\r\nc");
    EXPECT_EQ(MyItemGetText(note, "Names", buffer, sizeof buffer), 7);
    EXPECT_STREQ(buffer, "a, b, c");
    EXPECT_EQ(MyItemGetText(note, "subject", buffer, sizeof buffer), 4);
    EXPECT_STREQ(buffer, "x, y");
}

TEST_F(ItemText, ReadsOtherTypesAsTheStoreRendersThem)
{
    const NOTEHANDLE note = Open({pavex::NumberItem("Count", 42.5), pavex::TimeItem("When", TIMEDATE{{0, 2454165}}),
                                  RichText("Body", {"text"})});
    char buffer[100];
    char expected[100];
    for (const char* item : {"Count", "When", "Body"}) {
        const WORD length = VLTItemGetText(note, item, expected, sizeof expected - 1);
        expected[length] = '\0';
        EXPECT_EQ(MyItemGetText(note, item, buffer, sizeof buffer), length);
        EXPECT_STREQ(buffer, expected);
    }
    EXPECT_EQ(MyItemGetText(note, "Count", buffer, sizeof buffer), 4);
    EXPECT_STREQ(buffer, "42.5");
}

TEST_F(ItemText, NeverWritesPastTheSizeWhateverTheType)
{
    const NOTEHANDLE note = Open({pavex::TextItem("Text", "longer than that"), pavex::NumberItem("Number", 1234567)});
    for (const char* item : {"Text", "Number"}) {
        for (WORD size = 0; size < 8; ++size) {
            char buffer[8];
            std::memset(buffer, 0x55, sizeof buffer);
            const WORD length = MyItemGetText(note, item, buffer, size);
            EXPECT_LT(length, size == 0 ? 1 : size);
            for (size_t i = size; i < sizeof buffer; ++i)
                EXPECT_EQ(buffer[i], 0x55) << item << " size " << size;
        }
    }
}

TEST_F(ItemText, AnAbsentItemGivesNothingAndEmptiesTheBuffer)
{
    const NOTEHANDLE note = Open(std::vector<pavex::Item>{});
    char buffer[100] = "before";
    EXPECT_EQ(MyItemGetText(note, "Subject", buffer, sizeof buffer), 0);
    EXPECT_STREQ(buffer, "");
}

TEST_F(ItemText, TellsWhetherAnItemHasText)
{
    const NOTEHANDLE note = Open({pavex::TextItem("Full", "more than four bytes"), pavex::TextItem("Empty", ""),
                                  pavex::NumberItem("Number", 0), pavex::TextItem("Wide", "日本")});
    EXPECT_TRUE(ItemHasText(note, "Full"));
    EXPECT_TRUE(ItemHasText(note, "Number"));
    EXPECT_TRUE(ItemHasText(note, "Wide"));
    EXPECT_FALSE(ItemHasText(note, "Empty"));
    EXPECT_FALSE(ItemHasText(note, "Absent"));
}

TEST_F(ItemText, IndexesAnItemByMode)
{
    const NOTEHANDLE note = Open({pavex::TextListItem("People", {"CN=Ann Lee/O=Acme", "joe@example.org"}),
                                  pavex::TextListItem("Categories", {"H", "Work"}), pavex::NumberItem("Count", 7)});
    EXPECT_EQ(IndexItem(note, kIndexAddresses, "People", "to", event_, false), 0);
    EXPECT_EQ(IndexItem(note, kIndexText, "People", "text", event_, false), 0);
    EXPECT_EQ(IndexItem(note, kIndexLines, "People", "lines", event_, false), 0);
    EXPECT_EQ(IndexItem(note, 99, "People", "other", event_, false), 0);
    EXPECT_EQ(IndexItem(note, kIndexCategories, "Categories", "categories", event_, false), 0);
    EXPECT_EQ(IndexItem(note, kIndexText, "Count", "count", event_, false), 0);
    EXPECT_EQ(Property("to"), "Ann Lee/Acme, joe@example.org");
    EXPECT_EQ(Property("text"), "CN=Ann Lee/O=Acme, joe@example.org");
    EXPECT_EQ(Property("lines"), "CN=Ann Lee/O=Acme\r\njoe@example.org");
    EXPECT_EQ(Property("other"), "CN=Ann Lee/O=Acme, joe@example.org");
    EXPECT_EQ(Property("categories"), std::string(kHolidayName) + ", Work");
    EXPECT_EQ(Property("count"), "7");
}

TEST_F(ItemText, AnAbsentItemAddsNothingUnlessAnEmptyTextIsAskedFor)
{
    const NOTEHANDLE note = Open(std::vector<pavex::Item>{});
    for (const int mode : {kIndexAddresses, kIndexText, kIndexCategories, kIndexLines}) {
        EXPECT_EQ(IndexItem(note, mode, "Subject", "absent", event_, false), 0);
        EXPECT_EQ(Property("absent"), std::nullopt);
    }
    EXPECT_EQ(IndexItem(note, kIndexText, "Subject", "subject", event_, true), 0);
    EXPECT_EQ(Property("subject"), "");
}

TEST_F(ItemText, IndexesTextOfEveryScriptUnchanged)
{
    const std::string text = "Grüße, 日本語, עברית, 😀 and \U0001F9D1";
    const NOTEHANDLE note = Open({pavex::TextItem("Subject", text)});
    EXPECT_EQ(IndexItem(note, kIndexText, "Subject", "subject", event_, false), 0);
    EXPECT_EQ(Property("subject"), text);
}

TEST_F(ItemText, CutsALongTextAtTheLimitAndBetweenCharacters)
{
    std::string text;
    for (int i = 0; i < 20000; ++i)
        text += "日";
    const NOTEHANDLE note = Open({pavex::TextItem("Subject", text), pavex::TextItem("Ascii", std::string(40000, 'x'))});
    EXPECT_EQ(IndexItem(note, kIndexText, "Subject", "subject", event_, false), 0);
    EXPECT_TRUE(Property("subject") == text.substr(0, 32767 / 3 * 3));
    EXPECT_EQ(IndexItem(note, kIndexText, "Ascii", "ascii", event_, false), 0);
    EXPECT_TRUE(Property("ascii") == std::string(32767, 'x'));
}

TEST_F(ItemText, IndexesABufferUpToTheWideLimit)
{
    const std::string text(65535, 'y');
    EXPECT_EQ(IndexItemBuffer(text.data(), 65535, "long", event_, false), 0);
    EXPECT_TRUE(Property("long") == std::string(32767, 'y'));
    EXPECT_EQ(IndexItemBuffer("ignored", 0, "empty", event_, true), 0);
    EXPECT_EQ(Property("empty"), "");
    EXPECT_EQ(IndexItemBuffer("ignored", 0, "none", event_, false), 0);
    EXPECT_EQ(Property("none"), std::nullopt);
    EXPECT_EQ(IndexItemBuffer("part of it", 4, "part", event_, false), 0);
    EXPECT_EQ(Property("part"), "part");
}

TEST_F(ItemText, DropsACharacterThatTheEndOfABufferCutsThrough)
{
    const std::string text = Scs("a😀");
    for (WORD length = 1; length < text.size(); ++length) {
        const std::string key = "cut" + std::to_string(length);
        EXPECT_EQ(IndexItemBuffer(text.data(), length, key.c_str(), event_, false), 0);
        EXPECT_EQ(Property(key.c_str()), "a");
    }
}

TEST_F(ItemText, AFailingStoreCallLeavesNoTextAndNoHandle)
{
    const NOTEHANDLE note = Open({pavex::TextListItem("People", {"CN=Ann Lee/O=Acme"})});
    char buffer[100] = "before";
    for (const char* call : {"VLTItemInfo", "OSLockBlock"}) {
        const NamedFault fault(call);
        EXPECT_EQ(MyItemGetText(note, "People", buffer, sizeof buffer), 0) << call;
        EXPECT_STREQ(buffer, "");
    }
}

}  // namespace
