// tests/client/check/write_obstacle_test.cpp: why nothing can be written into a folder.
#include "client/check/write_obstacle.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;

TEST(WriteObstacle, IsNoneWhereAFolderIsOrCanBeMade)
{
    const TemporaryDirectory folder;
    EXPECT_EQ(FindWriteObstacle(folder.Path().string()), "");
    EXPECT_EQ(FindWriteObstacle(folder.Path().string() + "/not/yet/there"), "");
}

TEST(WriteObstacle, IsAFileInTheFoldersPlaceOrAbove)
{
    const TemporaryDirectory folder;
    const std::string file = folder.Path().string() + "/file";
    std::ofstream(file) << "x";
    EXPECT_EQ(FindWriteObstacle(file), file + ": Not a directory");
    EXPECT_EQ(FindWriteObstacle(file + "/below/it"), file + ": Not a directory");
}

TEST(WriteObstacle, IsALinkThatLeadsRoundInCircles)
{
    const TemporaryDirectory folder;
    const std::string link = folder.Path().string() + "/link";
    fs::create_symlink(link, link);
    EXPECT_EQ(FindWriteObstacle(link), link + ": Too many levels of symbolic links");
}

TEST(WriteObstacle, IsAFolderThatIsNotTheUsers)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "root writes into any folder";
    const TemporaryDirectory folder;
    fs::permissions(folder.Path().string(), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_EQ(FindWriteObstacle(folder.Path().string() + "/below"), folder.Path().string() + ": Permission denied");
    fs::permissions(folder.Path().string(), fs::perms::owner_all);
}

TEST(WriteObstacle, IsAFullDisk)
{
    const TemporaryDirectory folder;
    if (mount("none", folder.Path().string().c_str(), "tmpfs", 0, "size=4k") != 0)
        GTEST_SKIP() << "only root mounts a disk to fill";
    EXPECT_EQ(FindWriteObstacle(folder.Path().string()), "");
    std::ofstream(folder.Path().string() + "/file") << std::string(4096, 'x');
    const std::string obstacle = FindWriteObstacle(folder.Path().string());
    ASSERT_EQ(umount(folder.Path().string().c_str()), 0);
    EXPECT_EQ(obstacle, folder.Path().string() + ": No space left on device");
}

}  // namespace
}  // namespace pavex
