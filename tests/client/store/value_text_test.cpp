// tests/client/store/value_text_test.cpp: the text form of item values.
#include "client/store/value_text.h"

#include <gtest/gtest.h>

#include <cstring>

#include "client/store/timedate.h"

using namespace pavex;

TEST(ValueText, JoinsTheValuesOfEveryType)
{
    const TIMEDATE time = *TimeFromIso("2007-03-05T14:00:00Z");
    EXPECT_EQ(TextOfItem(TextItem("T", "a\nb"), "|"), std::string("a\0b", 3));
    EXPECT_EQ(TextOfItem(TextListItem("T", {"a", "", "c"}), "|"), "a||c");
    EXPECT_EQ(TextOfItem(TextListItem("T", {}), "|"), "");
    EXPECT_EQ(TextOfItem(NumberItem("T", 2.5), "|"), "2.5");
    EXPECT_EQ(TextOfItem(TimeItem("T", time), "|"), "2007-03-05 14:00:00.00");
    EXPECT_EQ(TextOfItem(TimeListItem("T", {time, time}), "|"), "2007-03-05 14:00:00.00|2007-03-05 14:00:00.00");
    EXPECT_EQ(TextOfItem(RichTextItem("T", "records"), "|"), "");
    EXPECT_EQ(TextOfItem(FormulaItem("T", "1"), "|"), "");
}

TEST(ValueText, PrintsRangesWithTheirTwoEnds)
{
    Item item{"T", kTypeNumberRange, 0, {}};
    const WORD counts[] = {1, 1};
    const double numbers[] = {1, 2, 3};
    char bytes[sizeof counts + sizeof numbers];
    std::memcpy(bytes, counts, sizeof counts);
    std::memcpy(bytes + sizeof counts, numbers, sizeof numbers);
    item.value.assign(bytes, sizeof bytes);
    EXPECT_EQ(TextOfItem(item, ", "), "1, 2 - 3");
    EXPECT_EQ(ReadNumbers(item.type, item.value), std::vector<double>{1});
}

TEST(ValueText, ReadsNoFurtherThanADamagedValueGoes)
{
    const TIMEDATE time{{1, 2}};
    const Item items[] = {TextListItem("T", {"a", "bb"}), NumberItem("T", 1), TimeItem("T", time),
                          TimeListItem("T", {time, time})};
    for (const Item& item : items) {
        for (size_t bytes = 0; bytes < item.value.size(); ++bytes) {
            const std::vector<char> cut(item.value.begin(), item.value.begin() + static_cast<ptrdiff_t>(bytes));
            const std::string_view value(cut.data(), cut.size());
            (void)TextOfValue(item.type, value, "|");
            EXPECT_LE(ReadTimes(item.type, value).size(), 1u);
            EXPECT_TRUE(ReadNumbers(item.type, value).empty());
        }
    }
    std::vector<std::string_view> entries;
    EXPECT_FALSE(ReadTextList("\x05", &entries));
}
