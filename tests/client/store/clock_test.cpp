// tests/client/store/clock_test.cpp: the machine's clock and the virtual one.
#include "client/store/clock.h"

#include <gtest/gtest.h>

#include <ctime>
#include <thread>
#include <vector>

using namespace pavex;

TEST(VirtualClock, MovesOnlyWhenSomebodyWaits)
{
    VirtualClock clock(100000, 50);
    EXPECT_EQ(clock.NowHundredths(), 100000u);
    EXPECT_EQ(clock.TimerMilliseconds(), 50u);
    clock.Delay(1005);
    EXPECT_EQ(clock.NowHundredths(), 100100u);
    EXPECT_EQ(clock.TimerMilliseconds(), 1055u);
    clock.Advance(5);
    clock.Preempt();
    EXPECT_EQ(clock.NowHundredths(), 100101u);
    EXPECT_EQ(clock.Delays(), 1u);
    EXPECT_EQ(clock.Preempts(), 1u);
}

TEST(VirtualClock, RunsActionsAtTheirExactMomentsInOrder)
{
    VirtualClock clock(0);
    std::vector<std::pair<char, uint64_t>> seen;
    const auto note = [&](char name) { return [&, name] { seen.emplace_back(name, clock.TimerMilliseconds()); }; };
    clock.At(300, note('c'));
    clock.At(100, note('a'));
    clock.At(100, note('b'));
    clock.At(501, note('d'));
    clock.Delay(500);
    EXPECT_EQ(seen, (std::vector<std::pair<char, uint64_t>>{{'a', 100}, {'b', 100}, {'c', 300}}));
    EXPECT_EQ(clock.TimerMilliseconds(), 500u);
    clock.Delay(1);
    EXPECT_EQ(seen.back(), (std::pair<char, uint64_t>{'d', 501}));
}

TEST(VirtualClock, LetsAnActionPlanFurtherOnes)
{
    VirtualClock clock(0);
    std::vector<uint64_t> moments;
    std::function<void()> again = [&] {
        moments.push_back(clock.TimerMilliseconds());
        clock.At(clock.TimerMilliseconds() + 100, again);
    };
    clock.At(100, again);
    clock.Delay(350);
    EXPECT_EQ(moments, (std::vector<uint64_t>{100, 200, 300}));
}

TEST(VirtualClock, RunsAnActionOfThePastAtTheNextWait)
{
    VirtualClock clock(0, 1000);
    bool ran = false;
    clock.At(10, [&] { ran = true; });
    EXPECT_FALSE(ran);
    clock.Delay(0);
    EXPECT_TRUE(ran);
    EXPECT_EQ(clock.TimerMilliseconds(), 1000u);
}

TEST(SystemTimer, WrapsAtThirtyTwoBits)
{
    VirtualClock clock(0, 0xFFFFFFF0);
    SetClock(&clock);
    const DWORD before = OSGetSystemTimer();
    OSDelayThread(32);
    const DWORD after = OSGetSystemTimer();
    OSPreempt();
    SetClock(nullptr);
    EXPECT_EQ(before, 0xFFFFFFF0u);
    EXPECT_EQ(after, 0x10u);
    EXPECT_EQ(after - before, 32u);
    EXPECT_EQ(clock.Preempts(), 1u);
}

TEST(SystemClock, TellsTheTimeOfTheMachineAndWaits)
{
    const uint64_t seconds = SystemClock().NowHundredths() / 100;
    EXPECT_NEAR(static_cast<double>(seconds), static_cast<double>(std::time(nullptr)), 2);
    const uint64_t before = SystemClock().TimerMilliseconds();
    SystemClock().Delay(20);
    SystemClock().Preempt();
    EXPECT_GE(SystemClock().TimerMilliseconds() - before, 19u);
}

TEST(VirtualClock, IsSafeToWaitOnFromSeveralThreads)
{
    VirtualClock clock(0);
    int actions = 0;
    for (int i = 1; i <= 100; ++i)
        clock.At(static_cast<uint64_t>(i), [&] { ++actions; });
    std::thread other([&] {
        for (int i = 0; i < 100; ++i)
            (void)clock.TimerMilliseconds();
    });
    for (int i = 0; i < 100; ++i)
        clock.Delay(1);
    other.join();
    EXPECT_EQ(actions, 100);
    EXPECT_EQ(clock.TimerMilliseconds(), 100u);
}
