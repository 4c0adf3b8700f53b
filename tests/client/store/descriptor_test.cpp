// tests/client/store/descriptor_test.cpp: whole files in and out.
#include "client/store/descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

using namespace pavex;

TEST(ReplaceFile, MakesAndReplacesPrivateFiles)
{
    TemporaryDirectory dir;
    ASSERT_TRUE(ReplaceFile(dir / "f", "one"));
    EXPECT_EQ(std::filesystem::status(dir / "f").permissions(), std::filesystem::perms(0600));
    ASSERT_TRUE(ReplaceFile(dir / "f", std::string(200000, 'x')));
    EXPECT_EQ(ReadWholeFile(dir / "f"), std::string(200000, 'x'));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 1);
}

TEST(ReplaceFile, LeavesNothingBehindWhenItFails)
{
    TemporaryDirectory dir;
    EXPECT_FALSE(ReplaceFile(dir / "missing/f", "x"));
    EXPECT_EQ(errno, ENOENT);
    std::filesystem::create_directory(dir / "folder");
    WriteWholeFile(dir / "folder/kept", "kept");
    EXPECT_FALSE(ReplaceFile(dir / "folder", "x"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 1);
    EXPECT_EQ(ReadWholeFile(dir / "folder/kept"), "kept");
}

TEST(ReadAll, ReadsToTheEndOrFails)
{
    TemporaryDirectory dir;
    WriteWholeFile(dir / "f", std::string(100000, 'y'));
    std::string bytes = "old";
    const Descriptor file(open((dir / "f").c_str(), O_RDONLY));
    ASSERT_TRUE(ReadAll(file.Get(), &bytes));
    EXPECT_EQ(bytes, std::string(100000, 'y'));
    EXPECT_FALSE(ReadAll(-1, &bytes));
}

TEST(Descriptor, ClosesOnceAndMoves)
{
    Descriptor first(open("/dev/null", O_RDONLY));
    Descriptor second(std::move(first));
    EXPECT_TRUE(second.IsOpen());
    EXPECT_EQ(second.Close(), 0);
    EXPECT_EQ(second.Close(), 0);
    Descriptor bad(1 << 20);  // no such descriptor
    EXPECT_EQ(bad.Close(), EBADF);
}
