// tests/dialog/progress_text_test.cpp
#include "dialog/progress_text.h"

#include <gtest/gtest.h>

namespace {

TEST(ProgressText, TakesFormatsWithExactlyThreeIntegerConversions)
{
    for (const char* format : {"%d%d%d", "%d of %d (%d%%)", "%i/%u/%3d", "%05d %-2d %+d", "%3$d%%: %1$d of %2$d"})
        EXPECT_TRUE(IsProgressFormat(format)) << format;
    for (const char* format :
         {"", "%d %d", "%d %d %d %d", "%s %d %d", "%d %d %n", "%d %d %ld", "%d %d %*d", "%d %d %d%", "%d %d %.3d",
          "%d %d %", "%1$d %d %d", "%1$d %1$d %2$d", "%4$d %1$d %2$d", "%0$d %d %d", "%d %d %999d", "%d %d %f"})
        EXPECT_FALSE(IsProgressFormat(format)) << format;
}

TEST(ProgressText, FillsInTheNumbers)
{
    EXPECT_EQ(FormatProgress("%d of %d (%d%%)", 30, 120), "30 of 120 (25%)");
    EXPECT_EQ(FormatProgress("%3$d%%: %1$d of %2$d", 1, 3), "33%: 1 of 3");
    EXPECT_EQ(FormatProgress("%d/%d/%d", 21474837, 42949674), "21474837/42949674/50");  // product beyond 32 bits
}

TEST(ProgressText, DividesByWhatWasProcessedWhenTheTotalIsNotKnown)
{
    EXPECT_EQ(FormatProgress("%d/%d/%d", 8, 0), "8/8/100");
}

TEST(ProgressText, ShowsZeroPercentOfNothing)
{
    EXPECT_EQ(FormatProgress("%d/%d/%d", 0, 0), "0/0/0");
}

TEST(ProgressText, FallsBackToTheBuiltInFormat)
{
    EXPECT_EQ(FormatProgress("%s %s %s", 1, 4), "1 of 4 notes (25%)");
    EXPECT_EQ(FormatProgress("110", 1, 4), "1 of 4 notes (25%)");
}

TEST(ProgressText, IsCutBetweenCharacters)
{
    EXPECT_EQ(FormatProgress(std::string(400, 'x') + "%d%d%d", 1, 2), std::string(255, 'x'));
    EXPECT_EQ(CutUtf8("a\xC3\xA4", 2), "a");
    EXPECT_EQ(CutUtf8("a\xC3\xA4", 3), "a\xC3\xA4");
    EXPECT_EQ(CutUtf8("\xF0\x9F\x98\x80", 3), "");
}

}  // namespace
