// tests/client/app/signals_test.cpp: waiting for Ctrl-C and the system's request to end.
#include "client/app/signals.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <csignal>

#include "client/store/descriptor.h"

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

TEST(Signals, MakeADescriptorReadableWhenOneArrives)
{
    HoldSignals();
    const Descriptor descriptor(OpenSignalDescriptor());
    pollfd waiting{descriptor.Get(), POLLIN, 0};
    EXPECT_EQ(poll(&waiting, 1, 0), 0);
    ASSERT_EQ(kill(getpid(), SIGTERM), 0);
    EXPECT_EQ(poll(&waiting, 1, 60000), 1);
    EXPECT_TRUE(WaitForSignal(0));
}

}  // namespace
}  // namespace pavex
