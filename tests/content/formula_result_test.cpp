// tests/content/formula_result_test.cpp
#include "content/formula_result.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "client/store/charset.h"

namespace {

template <typename Value> std::string Bytes(const Value& value)
{
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

std::string TextOf(const std::string& value, WORD size = 200)
{
    std::string buffer(size + 8u, '\x55');
    const WORD length = FormulaResultText(value.data(), static_cast<DWORD>(value.size()), buffer.data(), size);
    EXPECT_EQ(buffer.substr(size), std::string(8, '\x55'));
    EXPECT_EQ(std::strlen(buffer.c_str()), length);
    return buffer.c_str();
}

std::string TimeText(const TIMEDATE& time)
{
    char text[100];
    WORD length = 0;
    EXPECT_EQ(ConvertTIMEDATEToText(nullptr, nullptr, &time, text, sizeof text, &length), kStatusOk);
    return std::string(text, length);
}

constexpr TIMEDATE kWhen{{3693000, 2454165}};
const std::string kTwoOfThem = Bytes(WORD{2}) + Bytes(WORD{0});

TEST(FormulaResult, ANumberOrTheFirstOfSeveral)
{
    EXPECT_EQ(TextOf(Bytes(kTypeNumber) + Bytes(42.5)), "42.5");
    EXPECT_EQ(TextOf(Bytes(kTypeNumberRange) + kTwoOfThem + Bytes(-7.0) + Bytes(8.0)), "-7");
}

TEST(FormulaResult, ATimeOrTheFirstOfSeveral)
{
    EXPECT_FALSE(TimeText(kWhen).empty());
    EXPECT_EQ(TextOf(Bytes(kTypeTime) + Bytes(kWhen)), TimeText(kWhen));
    EXPECT_EQ(TextOf(Bytes(kTypeTimeRange) + kTwoOfThem + Bytes(kWhen) + Bytes(TIMEDATE{})), TimeText(kWhen));
}

TEST(FormulaResult, ATextOrAListOfThem)
{
    EXPECT_EQ(TextOf(Bytes(kTypeText) + "as it stands"), "as it stands");
    EXPECT_EQ(TextOf(Bytes(kTypeTextList) + Bytes(WORD{2}) + Bytes(WORD{1}) + Bytes(WORD{2}) + "abc"), "a, bc");
}

TEST(FormulaResult, ALineBreakInATextIsABlank)
{
    EXPECT_EQ(TextOf(Bytes(kTypeText) + std::string("two\0lines", 9)), "two lines");
    EXPECT_EQ(TextOf(Bytes(kTypeText) + std::string("two\0lines", 9), 6), "two l");
}

TEST(FormulaResult, NothingElseIsATitle)
{
    for (const WORD type : {kTypeRichText, kTypeFormula, WORD{0x0900}})
        EXPECT_EQ(TextOf(Bytes(type) + "something long enough"), "");
    char buffer[8] = "before";
    EXPECT_EQ(FormulaResultText(nullptr, 100, buffer, sizeof buffer), 0);
    EXPECT_STREQ(buffer, "");
}

TEST(FormulaResult, AValueThatIsTooShortIsEmpty)
{
    for (const std::string& value : {Bytes(kTypeNumber) + Bytes(1.0), Bytes(kTypeNumberRange) + kTwoOfThem + Bytes(1.0),
                                     Bytes(kTypeTime) + Bytes(kWhen), Bytes(kTypeTimeRange) + kTwoOfThem + Bytes(kWhen),
                                     Bytes(kTypeTextList) + Bytes(WORD{1}) + Bytes(WORD{1}) + "a"}) {
        for (size_t bytes = 0; bytes < value.size(); ++bytes)
            EXPECT_EQ(TextOf(value.substr(0, bytes)), "") << bytes << " of " << value.size();
    }
}

TEST(FormulaResult, StaysInsideEverySizeBetweenCharacters)
{
    const std::string text = pavex::ScsFromUtf8("a日😀z");
    for (WORD size = 1; size < 20; ++size)
        EXPECT_EQ(TextOf(Bytes(kTypeText) + text, size), text.substr(0, pavex::ScsPrefix(text, size - 1u)));
    for (WORD size = 1; size < 10; ++size)
        EXPECT_EQ(TextOf(Bytes(kTypeNumber) + Bytes(123456.0), size), std::string("123456").substr(0, size - 1u));
}

}  // namespace
