// tests/client/watch/folder_events_test.cpp: what the system itself tells, in a folder of the test's own.
#include "client/watch/folder_events.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <vector>

#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using Depth = FolderEvents::Depth;
using Kind = FolderEvent::Kind;

class FolderEventsTest : public testing::Test {
protected:
    FolderEventsTest() : events_(OpenFolderEvents(&error_)) { EXPECT_NE(events_, nullptr) << error_; }

    // Waits for events, and gives those that are there.
    std::vector<FolderEvent> Read()
    {
        std::vector<FolderEvent> read;
        pollfd wait{events_->Descriptor(), POLLIN, 0};
        EXPECT_EQ(poll(&wait, 1, 60000), 1);
        events_->Read([&](const FolderEvent& event) { read.push_back(event); });
        return read;
    }
    bool HasNone()
    {
        bool none = true;
        events_->Read([&](const FolderEvent&) { none = false; });
        return none;
    }
    static bool Has(const std::vector<FolderEvent>& events, int watch, Kind kind, const std::string& name)
    {
        for (const FolderEvent& event : events)
            if (event.watch == watch && event.kind == kind && event.name == name)
                return true;
        return false;
    }

    TemporaryDirectory folder_;
    std::string error_;
    std::unique_ptr<FolderEvents> events_;
};

TEST_F(FolderEventsTest, TellOfFilesThatComeChangeAndGo)
{
    const int watch = events_->Watch(folder_.Path().string(), Depth::kContents);
    ASSERT_GE(watch, 0);
    WriteWholeFile(folder_ / "a", "x");
    std::vector<FolderEvent> events = Read();
    EXPECT_TRUE(Has(events, watch, Kind::kAdded, "a"));
    EXPECT_TRUE(Has(events, watch, Kind::kChanged, "a"));
    fs::rename(folder_ / "a", folder_ / "b");
    events = Read();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_TRUE(Has(events, watch, Kind::kGone, "a"));
    EXPECT_TRUE(Has(events, watch, Kind::kAdded, "b"));
    EXPECT_NE(events[0].move, 0U);
    EXPECT_EQ(events[0].move, events[1].move);
    fs::permissions(folder_ / "b", fs::perms::owner_read);
    EXPECT_TRUE(Has(Read(), watch, Kind::kAttributes, "b"));
    fs::remove(folder_ / "b");
    EXPECT_TRUE(Has(Read(), watch, Kind::kGone, "b"));
    fs::create_directory(folder_ / "c");
    EXPECT_TRUE(Read().at(0).isFolder);
}

TEST_F(FolderEventsTest, TellNothingOfReading)
{
    WriteWholeFile(folder_ / "a", "x");
    ASSERT_GE(events_->Watch(folder_.Path().string(), Depth::kContents), 0);
    ASSERT_GE(events_->Watch(folder_ / "a", Depth::kContents), 0);
    EXPECT_EQ(ReadWholeFile(folder_ / "a"), "x");
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_.Path()))
        EXPECT_TRUE(entry.is_regular_file());
    EXPECT_TRUE(HasNone());
}

TEST_F(FolderEventsTest, TellOfNamesAloneWhereThatIsEnough)
{
    WriteWholeFile(folder_ / "a", "x");
    const int watch = events_->Watch(folder_.Path().string(), Depth::kNames);
    WriteWholeFile(folder_ / "a", "xy");
    EXPECT_TRUE(HasNone());
    EXPECT_EQ(events_->Watch(folder_.Path().string(), Depth::kContents), watch) << "the same folder";
    EXPECT_EQ(events_->Watch(folder_.Path().string(), Depth::kNames), watch);
    WriteWholeFile(folder_ / "a", "x");
    EXPECT_TRUE(Has(Read(), watch, Kind::kChanged, "a")) << "the greatest depth asked for";
}

TEST_F(FolderEventsTest, TellThatAWatchEnded)
{
    fs::create_directory(folder_ / "sub");
    WriteWholeFile(folder_ / "file", "x");
    const int sub = events_->Watch(folder_ / "sub", Depth::kContents);
    const int file = events_->Watch(folder_ / "file", Depth::kContents);
    fs::remove(folder_ / "sub");
    fs::remove(folder_ / "file");
    const std::vector<FolderEvent> events = Read();
    EXPECT_TRUE(Has(events, sub, Kind::kGone, ""));
    EXPECT_TRUE(Has(events, sub, Kind::kEnded, ""));
    EXPECT_TRUE(Has(events, file, Kind::kEnded, ""));
}

TEST_F(FolderEventsTest, TellNothingMoreOfWhatIsNotWatched)
{
    const int watch = events_->Watch(folder_.Path().string(), Depth::kContents);
    events_->Unwatch(watch);
    EXPECT_TRUE(Has(Read(), watch, Kind::kEnded, ""));
    WriteWholeFile(folder_ / "a", "x");
    EXPECT_TRUE(HasNone());
}

TEST_F(FolderEventsTest, CannotWatchWhatIsNotThere)
{
    EXPECT_EQ(events_->Watch(folder_ / "none", Depth::kContents), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(FolderEventsTest, TellThatTheyWereMoreThanTheSystemKeeps)
{
    std::ifstream setting("/proc/sys/fs/inotify/max_queued_events");
    int most = 0;
    if (!(setting >> most) || most > 100000)
        GTEST_SKIP() << "the system keeps very many events";
    ASSERT_GE(events_->Watch(folder_.Path().string(), Depth::kContents), 0);
    std::ofstream files[] = {std::ofstream(folder_ / "a"), std::ofstream(folder_ / "b")};
    for (int i = 0; i < most; ++i)
        files[i % 2] << 'x' << std::flush;  // equal events in a row would be one
    bool lost = false;
    events_->Read([&](const FolderEvent& event) { lost = lost || event.kind == Kind::kLost; });
    EXPECT_TRUE(lost);
}

}  // namespace
}  // namespace pavex
