// tests/content/list_text_test.cpp
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "content/buffers.h"
#include "content/item_text.h"
#include "tests/content/note_fixture.h"
#include "tests/support/fault_plan.h"

namespace {

using ListText = NoteFixture;
constexpr char kUntouched = '\x55';

std::string Addresses(NOTEHANDLE note, const char* item, WORD size)
{
    std::string buffer(size + 16u, kUntouched);
    const WORD length = GetAddressList(note, item, buffer.data(), size);
    EXPECT_EQ(buffer.substr(size), std::string(16, kUntouched)) << "size " << size;
    if (size == 0)
        return {};
    EXPECT_EQ(std::strlen(buffer.c_str()), length);
    return Utf8(buffer.c_str());
}

TEST_F(ListText, AbbreviatesAndJoinsNames)
{
    const NOTEHANDLE note =
        Open({pavex::TextListItem("SendTo", {"CN=Ann Lee/O=Acme", "joe@example.org", "CN=Zoë Ünal/OU=R&D/O=Acme"}),
              pavex::TextItem("From", "CN=Solo/O=Acme")});
    EXPECT_EQ(Addresses(note, "SendTo", 1000), "Ann Lee/Acme, joe@example.org, Zoë Ünal/R&D/Acme");
    EXPECT_EQ(Addresses(note, "From", 1000), "Solo/Acme");
    EXPECT_EQ(Addresses(note, "Absent", 1000), "");
}

TEST_F(ListText, LeavesOutEmptyEntriesWithTheirSeparators)
{
    const NOTEHANDLE note = Open({pavex::TextListItem("SendTo", {"", "ann", "", "", "joe", ""}),
                                  pavex::TextListItem("CopyTo", {"", ""}), pavex::TextListItem("BlindCopyTo", {})});
    EXPECT_EQ(Addresses(note, "SendTo", 1000), "ann, joe");
    EXPECT_EQ(Addresses(note, "CopyTo", 1000), "");
    EXPECT_EQ(Addresses(note, "BlindCopyTo", 1000), "");
}

TEST_F(ListText, StopsBeforeASeparatorThreeBytesBeforeTheEnd)
{
    const NOTEHANDLE note = Open({pavex::TextListItem("SendTo", {"abcdefg", "h"})});
    EXPECT_EQ(Addresses(note, "SendTo", 10), "abcdefg");     // 7 bytes: size - 3
    EXPECT_EQ(Addresses(note, "SendTo", 11), "abcdefg, h");  // one byte below it
}

TEST_F(ListText, NamesStayInsideEverySize)
{
    const NOTEHANDLE note = Open({pavex::TextListItem("SendTo", {"CN=Ann Lee/O=Acme", "日本", "😀"})});
    const std::string whole = "Ann Lee/Acme, 日本, 😀";
    for (WORD size = 0; size < 40; ++size) {
        const std::string names = Addresses(note, "SendTo", size);
        EXPECT_EQ(names, whole.substr(0, names.size())) << "size " << size;
        EXPECT_FALSE(names.ends_with(", ")) << "size " << size;
    }
    EXPECT_EQ(Addresses(note, "SendTo", 40), whole);
}

TEST_F(ListText, KeepsANameThatTheStoreCannotAbbreviate)
{
    const NOTEHANDLE note = Open({pavex::TextListItem("SendTo", {"CN=Ann Lee/O=Acme", "joe"})});
    const NamedFault fault("DNAbbreviate");
    EXPECT_EQ(Addresses(note, "SendTo", 1000), "CN=Ann Lee/O=Acme, joe");
    EXPECT_EQ(Addresses(note, "SendTo", 6), "CN=An");
}

TEST_F(ListText, ALineBreakInANameIsABlank)
{
    const NOTEHANDLE note = Open({pavex::TextListItem("SendTo", {"CN=Ann\nLee/O=Acme", "a\nb", "joe"})});
    EXPECT_EQ(Addresses(note, "SendTo", 1000), "Ann Lee/Acme, a b, joe");
    EXPECT_EQ(IndexItem(note, kIndexAddresses, "SendTo", "to", event_, false), 0);
    EXPECT_EQ(Property("to"), "Ann Lee/Acme, a b, joe");
}

TEST_F(ListText, FindsTheOneNameBehindTensOfThousandsOfEmptyEntries)
{
    std::vector<std::string> names(65535);
    names.back() = "CN=Ann Lee/O=Acme";
    const NOTEHANDLE note = Open({pavex::TextListItem("SendTo", names)});
    EXPECT_EQ(Addresses(note, "SendTo", 1000), "Ann Lee/Acme");
}

struct CategoryList {
    std::string text;
    WORD length;
    bool operator==(const CategoryList&) const = default;
};
std::ostream& operator<<(std::ostream& stream, const CategoryList& list)
{
    return stream << list.length << " \"" << list.text << '"';
}

CategoryList Categories(NOTEHANDLE note, const char* item, WORD size)
{
    std::string buffer(size + 16u, kUntouched);
    const WORD length = GetCategoryList(note, item, buffer.data(), size);
    // A list that is full has its terminator at the size.
    EXPECT_EQ(buffer.substr(size + 1u), std::string(15, kUntouched)) << "size " << size;
    return {Utf8(std::string(buffer.c_str())), length};
}

TEST_F(ListText, ReplacesCategoryCodesByTheirNames)
{
    const NOTEHANDLE note =
        Open({pavex::TextListItem("Categories", {"H", "Work"}),
              pavex::TextListItem("Lower", {"h", "pc", "Hobby", "", "PCs"}), pavex::TextItem("One", "PC")});
    const std::string holiday = kHolidayName;
    EXPECT_EQ(Categories(note, "Categories", 1000).text, holiday + ", Work");
    EXPECT_EQ(Categories(note, "Lower", 1000).text, holiday + ", " + kPhoneCallsName + ", Hobby, PCs");
    EXPECT_EQ(Categories(note, "One", 1000).text, kPhoneCallsName);
    EXPECT_EQ(Categories(note, "Absent", 1000), (CategoryList{"", 0}));
}

TEST_F(ListText, ALineBreakInACategoryIsABlank)
{
    const NOTEHANDLE note = Open({pavex::TextListItem("Categories", {"Work\nHome", "H\nx", "H\n", "Last"})});
    EXPECT_EQ(Categories(note, "Categories", 1000).text, "Work Home, H x, H , Last");
    EXPECT_EQ(IndexItem(note, kIndexCategories, "Categories", "categories", event_, false), 0);
    EXPECT_EQ(Property("categories"), "Work Home, H x, H , Last");
}

TEST_F(ListText, ACodeWithoutAnEntryInTheTableShowsItsNumber)
{
    const NOTEHANDLE note = Open({pavex::TextListItem("Categories", {"V", "P", "C", "T"})});
    EXPECT_EQ(Categories(note, "Categories", 1000).text, "166, 167, 168, 170");
}

TEST_F(ListText, AnEntryPastTheSizeEndsTheListThere)
{
    const NOTEHANDLE note = Open({pavex::TextListItem("Categories", {"abcd", "efghij", "k"})});
    EXPECT_EQ(Categories(note, "Categories", 100), (CategoryList{"abcd, efghij, k", 15}));
    EXPECT_EQ(Categories(note, "Categories", 13), (CategoryList{"abcd, efghijk", 13}));
    EXPECT_EQ(Categories(note, "Categories", 12), (CategoryList{"abcd, efghij", 12}));
    EXPECT_EQ(Categories(note, "Categories", 10), (CategoryList{"abcd, efgh", 10}));
    EXPECT_EQ(Categories(note, "Categories", 4), (CategoryList{"abcd", 4}));
    EXPECT_EQ(Categories(note, "Categories", 3), (CategoryList{"abc", 3}));
}

TEST_F(ListText, NoSeparatorGoesInWithinThreeBytesOfTheSize)
{
    const NOTEHANDLE note = Open({pavex::TextListItem("Categories", {"abcdefg", "x"})});
    EXPECT_EQ(Categories(note, "Categories", 10), (CategoryList{"abcdefgx", 8}));
    EXPECT_EQ(Categories(note, "Categories", 11), (CategoryList{"abcdefg, x", 10}));
}

TEST_F(ListText, AHugeCategoryIsIndexedUpToTheLimit)
{
    const NOTEHANDLE note = Open({pavex::TextListItem("Categories", {"Work", std::string(32765, 'w'), "never"})});
    EXPECT_EQ(IndexItem(note, kIndexCategories, "Categories", "categories", event_, false), 0);
    EXPECT_TRUE(Property("categories") == "Work, " + std::string(32767 - 6, 'w'));
}

TEST_F(ListText, EntriesThatCannotBeReadAreLeftOut)
{
    const NOTEHANDLE note = Open({pavex::TextListItem("Categories", {"H", "V", "P", "C", "PC", "T"})});
    const NamedFault fault("VLTItemGetTextListEntry");
    EXPECT_EQ(Categories(note, "Categories", 1000), (CategoryList{"", 0}));
}

}  // namespace
