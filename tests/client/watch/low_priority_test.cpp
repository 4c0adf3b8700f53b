// tests/client/watch/low_priority_test.cpp: one thread steps back, the others do not.
#include "client/watch/low_priority.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <thread>

namespace pavex {
namespace {

struct Priority {
    int nice = 0;
    long io = 0;  // class in its upper bits
};

Priority Own()
{
    return {getpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid))), syscall(SYS_ioprio_get, 1, 0)};
}

TEST(LowPriority, IsThatOfTheThreadAlone)
{
    const Priority before = Own();
    Priority lowered;
    std::thread([&lowered] {
        LowerOwnPriority();
        lowered = Own();
    }).join();
    EXPECT_EQ(lowered.nice, std::max(before.nice, 10));
    EXPECT_EQ(lowered.io >> 13, 3) << "idle";
    EXPECT_EQ(Own().nice, before.nice);
    EXPECT_EQ(Own().io, before.io);
}

}  // namespace
}  // namespace pavex
