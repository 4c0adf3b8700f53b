// tests/client/watch/watch_lock_test.cpp: whether another process watches.
#include "client/watch/watch_lock.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

// What another process finds.
bool OtherFindsItHeld(const std::string& folder)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(WatchLock::IsHeldByOther(folder) ? 1 : 0);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 1;
}

TEST(WatchLock, IsSeenByOtherProcessesAsLongAsItIsHeld)
{
    const TemporaryDirectory folder;
    const std::string path = folder.Path().string();
    EXPECT_FALSE(OtherFindsItHeld(path)) << "nobody ever watched";
    {
        const WatchLock lock(path);
        EXPECT_TRUE(OtherFindsItHeld(path));
        EXPECT_TRUE(OtherFindsItHeld(path)) << "to ask takes nothing away";
    }
    EXPECT_FALSE(OtherFindsItHeld(path));
}

TEST(WatchLock, MayBeMissingWhereNoFileCanBeMade)
{
    const TemporaryDirectory folder;
    const WatchLock lock(folder / "none");
    EXPECT_FALSE(WatchLock::IsHeldByOther(folder / "none"));
}

}  // namespace
}  // namespace pavex
