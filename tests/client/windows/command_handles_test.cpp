// tests/client/windows/command_handles_test.cpp
#include "client/windows/command_handles.h"

#include <gtest/gtest.h>

#include "platform/windows.h"

namespace {

TEST(CommandHandles, LeadBackToTheControlTheyWereMadeFor)
{
    const unsigned long ok = pavex::CommandHandleOf(1);
    const unsigned long apply = pavex::CommandHandleOf(3397);
    EXPECT_NE(ok & 0x80000000UL, 0U);
    EXPECT_EQ(pavex::CommandHandleOf(1), ok);
    EXPECT_EQ(LookupCommandMsgID(ok), 1U);
    EXPECT_EQ(LookupCommandMsgID(apply), 3397U);
}

TEST(CommandHandles, LeadNowhereWhenNobodyMadeThem)
{
    EXPECT_EQ(LookupCommandMsgID(0x80000000UL | 5000), 0U);
    EXPECT_EQ(LookupCommandMsgID(1), 0U);
}

}  // namespace
