// tests/client/app/signals_test.cpp: waiting for Ctrl-C and the system's request to end.
#include "client/app/signals.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

namespace pavex {
namespace {

TEST(Signals, ArriveInTheWaitAlone)
{
    HoldSignals();
    for (const int number : {SIGINT, SIGTERM}) {
        ASSERT_EQ(kill(getpid(), number), 0);
        EXPECT_TRUE(WaitForSignal(60000)) << number;
        EXPECT_FALSE(WaitForSignal(0)) << number;
    }
}

TEST(Signals, LetTheWaitEndByItselfAfterItsTime)
{
    HoldSignals();
    EXPECT_FALSE(WaitForSignal(30));
}

}  // namespace
}  // namespace pavex
