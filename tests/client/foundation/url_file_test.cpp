// tests/client/foundation/url_file_test.cpp: data written to the file of a URL.
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>

#include "client/foundation/collections.h"
#include "tests/client/foundation/foundation_fixture.h"
#include "tests/support/temporary_directory.h"

class FoundationUrlFile : public FoundationTest {
protected:
    static Owned<CFDataRef> Bytes(std::string bytes)
    {
        return Owned<CFDataRef>(pavex::cf::ToRef<CFDataRef>(pavex::cf::New<pavex::cf::Data>(std::move(bytes))));
    }
    // The error code, after checking that the answer agrees with it.
    static SInt32 Write(const std::string& path, CFDataRef data, bool directory = false)
    {
        SInt32 error = 12345;
        const bool written = CFURLWriteDataAndPropertiesToResource(MakeUrl(path, directory), data, nullptr, &error);
        EXPECT_EQ(written, error == 0);
        return error;
    }
    TemporaryDirectory folder_;
};

TEST_F(FoundationUrlFile, CreatesAFileByTheUmask)
{
    const mode_t before = umask(022);
    EXPECT_EQ(Write(folder_ / "new", Bytes(std::string("a\0b", 3))), 0);
    umask(before);
    EXPECT_EQ(ReadWholeFile(folder_ / "new"), std::string("a\0b", 3));
    struct stat status {};
    ASSERT_EQ(stat((folder_ / "new").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0644u);
}

TEST_F(FoundationUrlFile, ReplacesTheContentInPlaceAndKeepsTheMode)
{
    WriteWholeFile(folder_ / "file", "a much longer content than before");
    ASSERT_EQ(chmod((folder_ / "file").c_str(), 0600), 0);
    struct stat before {
    }, after{};
    ASSERT_EQ(stat((folder_ / "file").c_str(), &before), 0);
    EXPECT_EQ(Write(folder_ / "file", Bytes("short")), 0);
    ASSERT_EQ(stat((folder_ / "file").c_str(), &after), 0);
    EXPECT_EQ(ReadWholeFile(folder_ / "file"), "short");
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode & 07777, 0600u);
    EXPECT_EQ(Write(folder_ / "file", Bytes("")), 0);
    EXPECT_EQ(ReadWholeFile(folder_ / "file"), "");
}

TEST_F(FoundationUrlFile, AnswersUnknownErrorForWhateverGoesWrong)
{
    EXPECT_EQ(Write(folder_ / "absent/file", Bytes("x")), kCFURLUnknownError);
    EXPECT_EQ(Write(folder_.Path().string(), Bytes("x")), kCFURLUnknownError);
    EXPECT_FALSE(
        CFURLWriteDataAndPropertiesToResource(MakeUrl(folder_ / "absent/file", false), Bytes("x"), nullptr, nullptr));
}

TEST_F(FoundationUrlFile, AFullDiskIsAnError)
{
    if (access("/dev/full", W_OK) != 0)
        GTEST_SKIP() << "no /dev/full here";
    EXPECT_EQ(Write("/dev/full", Bytes("x")), kCFURLUnknownError);
}

TEST_F(FoundationUrlFile, AWriteCutShortByALimitIsAnError)
{
    // In a process of its own: the limit holds for all that a process writes.
    const std::string path = folder_ / "limited";
    const Owned<CFDataRef> data = Bytes(std::string(100000, 'x'));
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
        _exit(CFURLWriteDataAndPropertiesToResource(MakeUrl(path, false), data, nullptr, nullptr) ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(std::filesystem::file_size(path), 4096u);
}

TEST_F(FoundationUrlFile, ADirectoryUrlMakesTheDirectory)
{
    EXPECT_EQ(Write(folder_ / "made", Bytes("ignored"), true), 0);
    EXPECT_TRUE(std::filesystem::is_directory(folder_ / "made"));
    EXPECT_TRUE(std::filesystem::is_empty(folder_ / "made"));
    EXPECT_EQ(Write(folder_ / "made", Bytes("ignored"), true), kCFURLUnknownError);
}

TEST_F(FoundationUrlFile, NoDataWritesNothing)
{
    EXPECT_EQ(Write(folder_ / "nothing", nullptr), 0);
    EXPECT_EQ(Write(folder_ / "nothing", nullptr, true), 0);
    EXPECT_FALSE(std::filesystem::exists(folder_ / "nothing"));
}

TEST_F(FoundationUrlFile, WritesThroughInterruptionsAndPartialWrites)
{
    // A pipe with a slow reader takes a large write in pieces; signals interrupt it meanwhile.
    const std::string path = folder_ / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const std::string bytes(1 << 20, 'y');
    const pid_t parent = getpid();
    struct sigaction action {
    }, before{};
    action.sa_handler = [](int) {};
    ASSERT_EQ(sigaction(SIGUSR1, &action, &before), 0);
    const pid_t child = fork();
    if (child == 0) {
        usleep(20000);  // the writer waits in open by now
        kill(parent, SIGUSR1);
        FILE* pipe = std::fopen(path.c_str(), "r");
        size_t count = 0;
        char block[65536];
        for (size_t n = 0; (n = std::fread(block, 1, sizeof block, pipe)) > 0; count += n) {
            kill(parent, SIGUSR1);
            usleep(500);
        }
        _exit(count == bytes.size() ? 0 : 1);
    }
    EXPECT_EQ(Write(path, Bytes(bytes)), 0);
    int status = -1;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    EXPECT_EQ(status, 0);
    sigaction(SIGUSR1, &before, nullptr);
}
