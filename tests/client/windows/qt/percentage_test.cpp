// tests/client/windows/qt/percentage_test.cpp: how far something is, by what a status line says.
#include "client/windows/qt/percentage.h"

#include <gtest/gtest.h>

namespace pavex {
namespace {

std::optional<int> In(const char* utf8)
{
    return PercentageIn(QString::fromUtf8(utf8));
}

TEST(Percentage, IsTheNumberBeforeTheSign)
{
    EXPECT_EQ(In("Overall: 12 of 50 notes (24%)"), 24);
    EXPECT_EQ(In("全体：3 / 4 件のノート（75％）"), 75);
    EXPECT_EQ(In("0%"), 0);
}

TEST(Percentage, MayStandApartFromItsSign)
{
    EXPECT_EQ(In("24 %"), 24);
    EXPECT_EQ(In("24\u00A0%"), 24);
    EXPECT_EQ(In("24\u202F%"), 24);
}

TEST(Percentage, IsTheLastOne)
{
    EXPECT_EQ(In("/home/ann/50%.vlt: 7%"), 7);
}

TEST(Percentage, IsAtMostAHundred)
{
    EXPECT_EQ(In("120%"), 100);
    EXPECT_EQ(In("99999999999999999999%"), std::nullopt);
}

TEST(Percentage, IsNoneWithoutASignOrANumber)
{
    EXPECT_EQ(In("12 of 50"), std::nullopt);
    EXPECT_EQ(In("%"), std::nullopt);
    EXPECT_EQ(In(""), std::nullopt);
}

}  // namespace
}  // namespace pavex
