// tests/client/search/process_test.cpp: other programs are run without a shell, in surroundings of our own.
#include "client/search/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "client/search/tool_failure.h"

namespace pavex {
namespace {

TEST(Process, HandsWordsOverAsTheyAre)
{
    const ProcessResult result = RunProcess({"printf", "%s|", "a b", "$HOME", "`x`", "\"", "é\n", "-n", ""});
    EXPECT_EQ(result.exit, 0);
    EXPECT_EQ(result.output, "a b|$HOME|`x`|\"|é\n|-n||");
}

TEST(Process, GathersBothOutputsAndTheExitStatus)
{
    const ProcessResult result = RunProcess({"sh", "-c", "echo out; echo err >&2; cat; exit 7"});
    EXPECT_EQ(result.exit, 7);
    EXPECT_EQ(result.output, "out\nerr\n");
    EXPECT_EQ(RunProcess({"sh", "-c", "kill -TERM $$"}).exit, 128 + SIGTERM);
    EXPECT_EQ(RunProcess({"sh", "-c", "yes | head -c 1000000"}).output.size(), 1000000U);
}

TEST(Process, KeepsTheUsersOwnSearchSettingsAndTimeZoneOut)
{
    setenv("RECOLL_CONFDIR", "/home/else", 1);
    setenv("RECOLL_EXTRA_DBS", "/home/else", 1);
    setenv("TZ", "Asia/Tokyo", 1);
    setenv("PROCESS_TEST", "stays", 1);
    const std::string output = RunProcess({"env"}).output;
    for (const char* name : {"RECOLL_CONFDIR", "RECOLL_EXTRA_DBS", "TZ", "PROCESS_TEST"})
        unsetenv(name);
    EXPECT_THAT(output, testing::Not(testing::HasSubstr("RECOLL_")));
    EXPECT_THAT(output, testing::HasSubstr("TZ=UTC\n"));
    EXPECT_THAT(output, testing::HasSubstr("LC_ALL=C.UTF-8\n"));
    EXPECT_THAT(output, testing::HasSubstr("PROCESS_TEST=stays\n"));
}

TEST(Process, SaysWhyAProgramDidNotDoItsWork)
{
    const ProcessResult missing = RunProcess({"no-such-program-at-all"});
    EXPECT_EQ(missing.error, ENOENT);
    std::string error;
    EXPECT_TRUE(DescribeFailure("no-such-program-at-all", missing, &error));
    EXPECT_THAT(error, testing::HasSubstr("install the package recollcmd"));
    EXPECT_TRUE(DescribeFailure("sh", RunProcess({"sh", "-c", "echo why; echo more; exit 3"}), &error));
    EXPECT_EQ(error, "sh failed (exit status 3): why");
    EXPECT_TRUE(DescribeFailure("/", RunProcess({"/"}), &error));
    EXPECT_EQ(error, "cannot run /: Permission denied");
    error.clear();
    EXPECT_FALSE(DescribeFailure("true", RunProcess({"true"}), &error));
    EXPECT_EQ(error, "");
}

}  // namespace
}  // namespace pavex
