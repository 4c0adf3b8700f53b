// tests/client/import/flowed_text_test.cpp: format=flowed text.
#include "client/import/flowed_text.h"

#include <gtest/gtest.h>

namespace pavex {
namespace {

TEST(FlowedText, JoinsLinesThatEndInASpace)
{
    EXPECT_EQ(JoinFlowedText("one \ntwo \nthree\nfour\n", false), "one two three\nfour\n");
}

TEST(FlowedText, TakesTheSpaceAwayWithDelSp)
{
    EXPECT_EQ(JoinFlowedText("Donau \ndampf \nschiff\n", true), "Donaudampfschiff\n");
}

TEST(FlowedText, UnstuffsLines)
{
    EXPECT_EQ(JoinFlowedText(" From here\n >not quoted\n  indented\n", false), "From here\n>not quoted\n indented\n");
}

TEST(FlowedText, KeepsQuotesApartByTheirDepth)
{
    EXPECT_EQ(JoinFlowedText("> one \n> two\n>> deep \nplain\n>\n", false), "> one two\n>> deep \nplain\n>\n");
}

TEST(FlowedText, NeverJoinsASignature)
{
    EXPECT_EQ(JoinFlowedText("the end \n-- \nAnn\n", false), "the end \n-- \nAnn\n");
}

TEST(FlowedText, TakesTextWithoutALastLineBreak)
{
    EXPECT_EQ(JoinFlowedText("one \ntwo", false), "one two");
    EXPECT_EQ(JoinFlowedText("one ", false), "one ");
    EXPECT_EQ(JoinFlowedText("", false), "");
}

}  // namespace
}  // namespace pavex
