// tests/content/scs_text_test.cpp
#include "content/scs_text.h"

#include <gtest/gtest.h>

#include "client/store/charset.h"
#include "content/buffers.h"

namespace {

// One to three bytes, and a pair of three.
constexpr char kMixed[] = "aé日😀ßz€\U0010FFFF!";

TEST(ScsText, CutsAtEveryPlaceWhereTheStoreItselfWouldCut)
{
    const std::string text = pavex::ScsFromUtf8(kMixed);
    for (size_t length = 0; length <= text.size(); ++length)
        EXPECT_EQ(WholeScsBytes(text.data(), length), pavex::ScsPrefix(text, length)) << "of " << length << " bytes";
}

TEST(ScsText, LeavesStrayContinuationBytesToTheConversion)
{
    const std::string text = "ab\x80\x80\x80\x80";
    EXPECT_EQ(WholeScsBytes(text.data(), text.size()), text.size());
}

TEST(ScsText, WidensToTheSameUnits)
{
    const std::string text = pavex::ScsFromUtf8(kMixed);
    EXPECT_EQ(WideFromScs(text.data(), static_cast<WORD>(text.size()), kWideItemLimit), CString(kMixed));
    EXPECT_TRUE(WideFromScs("", 0, kWideItemLimit).IsEmpty());
}

TEST(ScsText, WidensNoMoreThanTheLimit)
{
    const std::string text(40000, 'x');
    EXPECT_EQ(WideFromScs(text.data(), 40000, kWideFlushLimit).GetLength(), 30000);
    EXPECT_EQ(WideFromScs(text.data(), 40000, kWideItemLimit).GetLength(), 32767);
    EXPECT_EQ(WideFromScs(text.data(), 40000, 1).GetLength(), 0);
}

TEST(AsciiCase, IsAllThatTwoTextsMayDifferIn)
{
    EXPECT_TRUE(SameWithoutCase("", ""));
    EXPECT_TRUE(SameWithoutCase("Reply With History", "rEPLY wITH hISTORY"));
    EXPECT_FALSE(SameWithoutCase("Memo", "Memos"));
    EXPECT_FALSE(SameWithoutCase("Memo", std::string_view("Memo\0", 5)));
    EXPECT_FALSE(SameWithoutCase("\xC3\x84", "\xC3\xA4"));  // letters, but not ASCII's
    EXPECT_FALSE(SameWithoutCase("@[", "`{"));              // as far apart as letters are
}

}  // namespace
