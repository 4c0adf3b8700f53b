// tests/client/store/files_test.cpp: temporary files.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "client/store/charset.h"
#include "tests/client/store/host_fixture.h"

using namespace pavex;

class TemporaryFiles : public HostFixture {
protected:
    TemporaryFiles() { setenv("TMPDIR", dir.Path().c_str(), 1); }
    ~TemporaryFiles() override { unsetenv("TMPDIR"); }
};

TEST_F(TemporaryFiles, AreEmptyPrivateAndDeletable)
{
    char name[768];
    DWORD file = 0;
    ASSERT_EQ(OSCreateTempFile(name, sizeof name, &file), kStatusOk);
    EXPECT_NE(file, 0u);
    struct stat status {};
    ASSERT_EQ(stat(name, &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    EXPECT_EQ(status.st_size, 0);
    EXPECT_TRUE(std::string(name).starts_with(dir.Path().string()));
    EXPECT_EQ(OSCloseFile(file), kStatusOk);
    EXPECT_EQ(OSCloseFile(file), kStatusBadHandle);
    EXPECT_EQ(OSFileDelete(name), kStatusOk);
    EXPECT_EQ(OSFileDelete(name), kStatusNoSuchFile);
}

TEST_F(TemporaryFiles, LeaveNothingBehindWhenTheirNameDoesNotFit)
{
    char name[8] = "old";
    DWORD file = 7;
    const auto before = std::distance(std::filesystem::directory_iterator(dir.Path()), {});
    EXPECT_EQ(OSCreateTempFile(name, sizeof name, &file), kStatusBadText);
    EXPECT_EQ(file, 0u);
    EXPECT_STREQ(name, "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), before);
}

TEST_F(TemporaryFiles, CannotBeMadeWithoutTheirFolder)
{
    setenv("TMPDIR", (dir / "missing").c_str(), 1);
    char name[768];
    DWORD file = 7;
    EXPECT_EQ(OSCreateTempFile(name, sizeof name, &file), kStatusNoSuchFile);
    EXPECT_EQ(file, 0u);
}

TEST_F(TemporaryFiles, OfAProcessThatWasKilledAreSweptAwayAndOthersStay)
{
    const pid_t child = fork();
    if (child == 0) {
        char name[768];
        DWORD file = 0;
        OSCreateTempFile(name, sizeof name, &file);
        raise(SIGKILL);
    }
    waitpid(child, nullptr, 0);
    char ours[768];
    DWORD file = 0;
    ASSERT_EQ(OSCreateTempFile(ours, sizeof ours, &file), kStatusOk);
    OSCloseFile(file);
    WriteWholeFile(dir / "pavex-notes.txt", "not a temporary file");
    const auto before = std::distance(std::filesystem::directory_iterator(dir.Path()), {});
    SweepTemporaryFiles();
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), before - 1);
    EXPECT_TRUE(std::filesystem::exists(dir / "pavex-notes.txt"));
    EXPECT_TRUE(std::filesystem::exists(ours));
}

TEST_F(TemporaryFiles, HaveNamesInTheStoresCharacterSet)
{
    const std::string folder = dir / "\xF0\x9F\x98\x80";
    std::filesystem::create_directory(folder);
    setenv("TMPDIR", folder.c_str(), 1);
    char name[768];
    DWORD file = 0;
    ASSERT_EQ(OSCreateTempFile(name, sizeof name, &file), kStatusOk);
    EXPECT_TRUE(std::string(name).starts_with(ScsFromUtf8(folder)));
    OSCloseFile(file);
    EXPECT_EQ(OSFileDelete(name), kStatusOk);
    EXPECT_TRUE(std::filesystem::is_empty(folder));
}
