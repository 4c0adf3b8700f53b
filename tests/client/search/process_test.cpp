// tests/client/search/process_test.cpp: other programs are run without a shell, in surroundings of our own.
#include "client/search/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <sstream>

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
}

TEST(Process, KeepsNoMoreOutputThanItNeedsHoweverMuchThereIs)
{
    EXPECT_EQ(RunProcess({"sh", "-c", "yes | head -c 1000000"}).output.size(), kMostOutput);
    EXPECT_EQ(RunProcess({"sh", "-c", "yes | head -c 100"}).output.size(), 100U);
}

TEST(Process, HandsOnEachLineAsItComes)
{
    std::vector<std::string> lines;
    const auto take = [&lines](const std::string& line) { lines.push_back(line); };
    (void)RunProcess({"printf", "one\n\ntwo\nthree"}, take);
    EXPECT_THAT(lines, testing::ElementsAre("one", "", "two", "three"));
    lines.clear();
    (void)RunProcess({"sh", "-c", "yes line | head -n 200000"}, take);
    EXPECT_EQ(lines.size(), 200000U);
    EXPECT_EQ(lines.back(), "line");
    lines.clear();
    (void)RunProcess({"sh", "-c", "head -c 3000000 /dev/zero | tr '\\0' x; echo; echo next"}, take);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].size(), kLongestLine);
    EXPECT_EQ(lines[1], "next");
}

TEST(Process, MeetsSignalsAsAShellsProgramsDo)
{
    void (*const before)(int) = std::signal(SIGPIPE, SIG_IGN);
    sigset_t held;
    sigset_t old;
    sigemptyset(&held);
    sigaddset(&held, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &held, &old);
    std::istringstream status(RunProcess({"sed", "-nE", "s/Sig(Blk|Ign):\\t//p", "/proc/self/status"}).output);
    pthread_sigmask(SIG_SETMASK, &old, nullptr);
    std::signal(SIGPIPE, before);
    uint64_t blocked = 1;
    uint64_t ignored = ~uint64_t{0};
    status >> std::hex >> blocked >> ignored;
    EXPECT_EQ(blocked, 0U);
    for (const int number : {SIGPIPE, SIGINT, SIGQUIT, SIGTERM, SIGHUP})
        EXPECT_EQ(ignored >> (number - 1) & 1, 0U) << number;
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
