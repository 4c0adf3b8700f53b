// tests/client/watch/tree_state_test.cpp: which changes show without opening a file.
#include "client/watch/tree_state.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;

class TreeState : public testing::Test {
protected:
    void Write(const std::string& name, const std::string& content) const
    {
        fs::create_directories(fs::path(folder_ / name).parent_path());
        WriteWholeFile(folder_ / name, content);
    }
    uint64_t State(const std::string& name) const
    {
        return TreeStateOf(folder_ / name, [] { return true; });
    }

    TemporaryDirectory folder_;
};

TEST_F(TreeState, ShowsWhatAnImportMightReadAnew)
{
    Write("m/cur/1:2,", "one");
    Write("m/notes/a.md", "a");
    uint64_t last = State("m");
    EXPECT_EQ(State("m"), last);
    const auto changed = [&] { return std::exchange(last, State("m")) != last; };
    Write("m/new/2", "two");
    EXPECT_TRUE(changed()) << "a file more";
    Write("m/notes/a.md", "longer");
    EXPECT_TRUE(changed()) << "a file written to";
    fs::rename(folder_ / "m/cur/1:2,", folder_ / "m/cur/1:2,S");
    EXPECT_TRUE(changed()) << "a file renamed";
    fs::last_write_time(folder_ / "m/notes/a.md", fs::file_time_type());
    EXPECT_TRUE(changed()) << "a file of another time";
    fs::create_directory(folder_ / "m/empty");
    EXPECT_TRUE(changed()) << "a folder more";
    fs::remove(folder_ / "m/new/2");
    EXPECT_TRUE(changed()) << "a file less";
    Write("m/tmp/3", "being delivered");
    Write("m/.hidden/x", "x");
    Write("m/dovecot.index.cache", "x");
    EXPECT_FALSE(changed()) << "what the import passes over";
}

TEST_F(TreeState, ShowsAFileThatIsTheSourceItself)
{
    Write("inbox.mbox", "one");
    const uint64_t first = State("inbox.mbox");
    EXPECT_EQ(State("inbox.mbox"), first);
    Write("inbox.mbox", "one and two");
    EXPECT_NE(State("inbox.mbox"), first);
    EXPECT_NE(State("none"), first);
}

}  // namespace
}  // namespace pavex
