// tests/client/app/hurried_clock_test.cpp: the clock on which the waits between cycles pass quickly.
#include "client/app/hurried_clock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "tests/support/temporary_directory.h"
#include "tests/support/test_database.h"

namespace pavex {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

milliseconds TimeTaken(const std::function<void()>& work)
{
    const auto start = steady_clock::now();
    work();
    return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
}

TEST(HurriedClock, LetsTheTimerRunAheadBetweenPasses)
{
    HurriedClock clock(3600000);
    const uint64_t before = clock.TimerMilliseconds();
    EXPECT_LT(TimeTaken([&clock] { clock.Delay(1000000); }), milliseconds(10000));
    EXPECT_GE(clock.TimerMilliseconds(), before + 1000000);
    EXPECT_FALSE(clock.CycleDone());
}

TEST(HurriedClock, TellsWhenAWholeCycleHasBeenMade)
{
    HurriedClock clock(360000);
    clock.Delay(359999);
    EXPECT_FALSE(clock.CycleDone());
    clock.Delay(1);
    EXPECT_TRUE(clock.CycleDone());
}

TEST(HurriedClock, WaitsReallyWithinAPass)
{
    const TemporaryDirectory home;
    const TestDatabase database(home / "m.vlt");
    DBHANDLE handle = 0;
    ASSERT_EQ(VLTDbOpen((home / "m.vlt").c_str(), &handle), 0);
    HurriedClock clock(1000);
    EXPECT_GE(TimeTaken([&clock] { clock.Delay(60); }), milliseconds(59));
    VLTDbClose(handle);
    clock.Delay(999);
    EXPECT_FALSE(clock.CycleDone()) << "time within a pass counted as waiting";
    clock.Delay(1);
    EXPECT_TRUE(clock.CycleDone());
}

TEST(HurriedClock, EndsADelayThatIsUnderWay)
{
    HurriedClock clock(0);
    std::thread waiting;
    const milliseconds taken = TimeTaken([&] {
        waiting = std::thread([&clock] { clock.Delay(600000); });
        clock.EndDelays();
        waiting.join();
    });
    EXPECT_LT(taken, milliseconds(60000));
    EXPECT_LT(TimeTaken([&clock] { clock.Delay(600000); }), milliseconds(60000));
}

TEST(HurriedClock, KeepsTheDate)
{
    HurriedClock clock(1000);
    clock.Delay(900);
    const uint64_t now = SystemClock().NowHundredths();
    EXPECT_NEAR(static_cast<double>(clock.NowHundredths()), static_cast<double>(now), 50);
}

}  // namespace
}  // namespace pavex
