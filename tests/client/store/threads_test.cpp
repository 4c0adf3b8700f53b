// tests/client/store/threads_test.cpp: threads of the store.
#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>

#include <atomic>

#include "tests/client/store/host_fixture.h"

using namespace pavex;

using Threads = HostFixture;

namespace {

std::atomic<int> ran{0};
std::atomic<bool> onMain{false};

void CountRun(void* arg)
{
    onMain = OSIsClientMainThread();
    ran += *static_cast<int*>(arg);
}

int Policy()
{
    int policy = -1;
    sched_param parameters{};
    pthread_getschedparam(pthread_self(), &policy, &parameters);
    return policy;
}

}  // namespace

TEST_F(Threads, RunAndAreWaitedFor)
{
    ran = 0;
    int one = 1;
    DWORD first = 0;
    DWORD second = 0;
    ASSERT_EQ(OSCreateThread(CountRun, OSGetDefaultThreadStackBytes(0), &one, &first), kStatusOk);
    ASSERT_EQ(OSCreateThread(CountRun, 0, &one, &second), kStatusOk);
    ASSERT_EQ(OSCreateThread(CountRun, 1, &one, nullptr), kStatusOk);
    JoinThreads();
    EXPECT_EQ(ran, 3);
    EXPECT_NE(first, second);
    EXPECT_FALSE(onMain);
    EXPECT_TRUE(OSIsClientMainThread());
    JoinThreads();
}

TEST_F(Threads, AreNotMadeWithAnImpossibleStack)
{
    int one = 1;
    ran = 0;
    const STATUS status = OSCreateThread(CountRun, 0xFFFFFFFF, &one, nullptr);  // may be had on a large machine
    JoinThreads();
    EXPECT_EQ(ran, status == kStatusOk ? 1 : 0);
}

TEST_F(Threads, LowerTheirPriorityAndRaiseItAgain)
{
    OSSetThreadPriority(-1);
    EXPECT_EQ(Policy(), SCHED_BATCH);
    OSSetThreadPriority(0);
    EXPECT_EQ(Policy(), SCHED_OTHER);
}

TEST_F(Threads, BeginAndEndTheStoresState)
{
    EXPECT_EQ(PavexInitThread(), kStatusOk);
    PavexTermThread();
    PavexTermThread();  // one too many is forgiven
}
