// tests/client/search/index_damage_test.cpp: which failures of the engine a new index would mend.
#include "client/search/index_damage.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

class IndexDamage : public testing::Test {
protected:
    std::string After(const ProcessResult& result, const std::string& log = "")
    {
        WriteWholeFile(folder_ / "log", log);
        return FindObstacle(folders_, result, IndexingLog(folders_));
    }

    TemporaryDirectory folder_;
    SearchFolders folders_{.templates = "", .metadata = "", .home = folder_.Path().string()};
};

TEST_F(IndexDamage, IsWhatIsLeftWhenNothingElseIsToBlame)
{
    EXPECT_EQ(After({.error = 0, .exit = 1, .output = "Indexing failed\n"}), "");
    EXPECT_EQ(After({.error = 0, .exit = 1, .output = "Cant open database in /x reason: Couldn't stat '/x'\n"}), "");
    EXPECT_EQ(After({.error = 0, .exit = 1, .output = "Indexing failed\n"},
                    ":2:rcldb/rcldb.cpp:999::Db::open: exception while opening [/x]: dir_end invalid in block 426\n"),
              "");
    for (const int crash : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL})
        EXPECT_EQ(After({.error = 0, .exit = 128 + crash, .output = ""}), "") << crash;
}

TEST_F(IndexDamage, IsNotWhatTheSystemOrTheUserDid)
{
    EXPECT_EQ(After({.error = ENOENT, .exit = -1, .output = ""}), "No such file or directory");
    for (const int number : {SIGINT, SIGTERM, SIGKILL, SIGHUP, SIGXCPU})
        EXPECT_EQ(After({.error = 0, .exit = 128 + number, .output = ""}), "it was stopped") << number;
    EXPECT_EQ(After({.error = 0, .exit = 1, .output = "Recollindex: got signal 15, registering stop request\n"}),
              "it was stopped");
    EXPECT_EQ(After({.error = 0,
                     .exit = 1,
                     .output = "Can't become exclusive indexer: flock failed. Return (other pid?): 9124\n"}),
              "another program is writing to the index");
    EXPECT_EQ(After({.error = 0,
                     .exit = 1,
                     .output = "Can't become exclusive indexer: Open failed: [/x/index.pid]: "
                               "Permission denied. Return (other pid?): 9056\n"}),
              "Permission denied");
}

TEST_F(IndexDamage, IsToldByWhatTheLogSaysOfTheIndexAndNotOfMetafiles)
{
    const ProcessResult failed{.error = 0, .exit = 1, .output = "Indexing failed\n"};
    EXPECT_EQ(After(failed,
                    ":2:index/x.cpp:1::y\n:2:rcldb/rcldb.cpp:999::Db::open: exception while opening [/x]: Unable "
                    "to get write lock on /x: Couldn't open lockfile: Permission denied\n"),
              "Permission denied");
    EXPECT_EQ(After(failed, ":2:internfile/mh_xslt.cpp:249::MimeHandlerXslt::set_document_: file_scan failed for "
                            "/m/B.vPavexNote  : open/stat: errno: 13 : Permission denied\n"),
              "");
}

TEST_F(IndexDamage, IsNotWhatHasNoRoomToBeMended)
{
    folders_.home += "/none";
    EXPECT_EQ(FindObstacle(folders_, {.error = 0, .exit = 1, .output = ""}, IndexingLog(folders_)),
              "No such file or directory");
}

TEST_F(IndexDamage, LeavesNothingBehindItsLookForRoom)
{
    EXPECT_EQ(After({.error = 0, .exit = 1, .output = ""}), "");
    size_t files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder_.Path()))
        ++files;
    EXPECT_EQ(files, 1U) << "the log";
}

}  // namespace
}  // namespace pavex
