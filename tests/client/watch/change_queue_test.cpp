// tests/client/watch/change_queue_test.cpp: when what changed is due, on time that the tests hand in.
#include "client/watch/change_queue.h"

#include <gtest/gtest.h>

#include <vector>

namespace pavex {
namespace {

using Files = std::set<std::string>;

class ChangeQueueTest : public testing::Test {
protected:
    // What is due at that time, in a line: "7 all", "7 a b", "7 folders", "7 look"; empty: nothing.
    std::string TakeAt(uint64_t now)
    {
        const std::optional<DueWork> work = queue_.Take(now);
        if (!work)
            return {};
        std::string text = std::to_string(work->source);
        for (const auto& [isSet, word] :
             {std::pair{work->all, "all"}, {work->folders, "folders"}, {work->look, "look"}})
            text += isSet ? std::string(" ") + word : "";
        for (const std::string& file : work->files)
            text += " " + file;
        return text;
    }

    ChangeQueue queue_{{.quietMs = 100, .longestMs = 1000, .longestRestMs = 5000, .againMs = 3000}};
};

TEST_F(ChangeQueueTest, HasNothingWhenNothingChanged)
{
    EXPECT_EQ(queue_.NextDue(), std::nullopt);
    EXPECT_EQ(TakeAt(1'000'000), "");
}

TEST_F(ChangeQueueTest, GivesAChangeWhenItHasBeenQuiet)
{
    queue_.FileChanged(7, "a", 50);
    queue_.FileChanged(7, "b", 120);
    queue_.FileChanged(7, "a", 130);
    EXPECT_EQ(queue_.NextDue(), 230U);
    EXPECT_EQ(TakeAt(229), "");
    EXPECT_EQ(TakeAt(230), "7 a b");
    EXPECT_EQ(queue_.NextDue(), std::nullopt);
    EXPECT_EQ(TakeAt(10'000), "") << "each change once";
}

TEST_F(ChangeQueueTest, GivesWhatNeverGrowsQuietAfterTheLongestWait)
{
    for (uint64_t now = 0; now < 1000; now += 50) {
        queue_.FileChanged(7, "a", now);
        ASSERT_EQ(TakeAt(now), "") << now;
    }
    EXPECT_EQ(queue_.NextDue(), 1000U);
    EXPECT_EQ(TakeAt(1000), "7 a");
    queue_.FileChanged(7, "a", 1010);
    EXPECT_EQ(queue_.NextDue(), 1110U) << "a burst of its own";
}

TEST_F(ChangeQueueTest, KeepsSourcesApart)
{
    queue_.FileChanged(1, "a", 0);
    queue_.AllChanged(2, 50);
    queue_.FoldersChanged(3, 60);
    EXPECT_EQ(TakeAt(100), "1 a");
    EXPECT_EQ(TakeAt(100), "");
    queue_.FileChanged(1, "b", 101);
    EXPECT_EQ(TakeAt(1000), "2 all") << "the one that has been due for longest";
    EXPECT_EQ(TakeAt(1000), "3 folders");
    EXPECT_EQ(TakeAt(1000), "1 b");
    EXPECT_EQ(TakeAt(1000), "");
}

TEST_F(ChangeQueueTest, TakesFilesInWithTheWhole)
{
    queue_.FileChanged(7, "a", 0);
    queue_.FoldersChanged(7, 10);
    queue_.AllChanged(7, 20);
    queue_.FileChanged(7, "b", 30);
    EXPECT_EQ(TakeAt(130), "7 all folders");
    EXPECT_EQ(queue_.NextDue(), std::nullopt);
}

TEST_F(ChangeQueueTest, TakesVeryManyFilesForTheWhole)
{
    for (int i = 0; i < 1000; ++i)
        queue_.FileChanged(7, std::to_string(i), 0);
    EXPECT_EQ(queue_.Take(100)->files.size(), 1000U);
    for (int i = 0; i < 1001; ++i)
        queue_.FileChanged(7, std::to_string(i), 200);
    EXPECT_EQ(TakeAt(300), "7 all");
}

TEST_F(ChangeQueueTest, RestsNineTimesAsLongAsAReadingTook)
{
    queue_.AllDueAt(7, 0);
    EXPECT_EQ(TakeAt(0), "7 all");
    queue_.AllChanged(7, 150);
    queue_.FileChanged(7, "a", 150);
    queue_.Read(7, true, 0, 200);
    EXPECT_EQ(TakeAt(250), "7 a") << "files are read while the whole waits";
    EXPECT_EQ(queue_.NextDue(), 2000U);
    EXPECT_EQ(TakeAt(1999), "");
    EXPECT_EQ(TakeAt(2000), "7 all");

    queue_.Read(7, false, 2000, 2010);
    queue_.FileChanged(7, "b", 2000);
    EXPECT_EQ(queue_.NextDue(), 2100U) << "the rest is over before it is quiet";
    queue_.Read(7, false, 2000, 2020);
    EXPECT_EQ(queue_.NextDue(), 2200U);
}

TEST_F(ChangeQueueTest, RestsNoLongerThanTheLongestRest)
{
    queue_.AllChanged(7, 0);
    queue_.Read(7, true, 0, 2000);
    EXPECT_EQ(queue_.NextDue(), 7000U);
}

TEST_F(ChangeQueueTest, LooksAtFoldersEvenWhileItRests)
{
    queue_.AllDueAt(7, 0);
    (void)TakeAt(0);
    queue_.Read(7, true, 0, 200);
    queue_.FoldersChanged(7, 300);
    EXPECT_EQ(TakeAt(400), "7 folders");
    queue_.AllDueAt(7, 400);
    EXPECT_EQ(queue_.NextDue(), 2000U) << "but reads after the rest";
}

TEST_F(ChangeQueueTest, ReadsAndLooksAgainAtTheirTimes)
{
    queue_.AllDueAt(7, 5000);
    queue_.AllDueAt(7, 3000);
    queue_.AllDueAt(7, 4000);
    queue_.LookAt(7, 2000);
    EXPECT_EQ(queue_.NextDue(), 2000U);
    EXPECT_EQ(TakeAt(2000), "7 look");
    EXPECT_EQ(queue_.NextDue(), 3000U);
    queue_.LookAt(7, 2500);
    EXPECT_EQ(TakeAt(3000), "7 all look");
    EXPECT_EQ(queue_.NextDue(), std::nullopt);
}

TEST_F(ChangeQueueTest, ForgetsASource)
{
    queue_.AllChanged(7, 0);
    queue_.LookAt(7, 0);
    queue_.Forget(7);
    queue_.Read(7, true, 0, 10);
    EXPECT_EQ(queue_.NextDue(), std::nullopt);
    EXPECT_EQ(TakeAt(1000), "");
}

}  // namespace
}  // namespace pavex
