// tests/client/store/environment_test.cpp: ini variables: values, failures, and several writers at once.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "client/store/charset.h"
#include "client/store/descriptor.h"
#include "tests/client/store/host_fixture.h"

using namespace pavex;

class Environment : public HostFixture {
protected:
    std::string Ini() const { return CurrentPlaces().ini; }
    // The variable as the store's call gives it; "none" when it is absent.
    static std::string Text(const char* name, WORD size = 256)
    {
        std::string value(size + 1u, '#');
        if (!OSGetEnvironmentString(name, value.data(), size))
            return "none";
        EXPECT_EQ(value[size], '#');
        return value.c_str();
    }
};

TEST_F(Environment, ReadsBackWhatWasSet)
{
    OSSetEnvironmentInt("Number", -42);
    OSSetEnvironmentVariable("Text", ScsFromUtf8("gr\xC3\xBCn \xF0\x9F\x98\x80").c_str());
    OSSetEnvironmentVariable("Empty", "");
    EXPECT_EQ(OSGetEnvironmentLong("Number"), -42);
    EXPECT_EQ(Text("Text"), ScsFromUtf8("gr\xC3\xBCn \xF0\x9F\x98\x80"));
    EXPECT_EQ(Text("Empty"), "");
    EXPECT_NE(ReadWholeFile(Ini()).find("[Pavex]\n"), std::string::npos);
    EXPECT_NE(ReadWholeFile(Ini()).find("Number=-42\n"), std::string::npos);
}

TEST_F(Environment, KeepsABatchBackAndWritesItInOneReplacement)
{
    WriteWholeFile(Ini(), "[Pavex]\nold=1\nkept=2\n");
    const std::string before = ReadWholeFile(Ini());
    {
        const VariableBatch batch;
        OSSetEnvironmentInt("a", 3);
        OSSetEnvironmentVariable("b", "");
        OSSetEnvironmentVariable("old", nullptr);
        {
            const VariableBatch inner;
            OSSetEnvironmentInt("a", 4);
        }
        EXPECT_EQ(ReadWholeFile(Ini()), before);
        for (const bool other : {false, true}) {
            const auto read = [] {
                EXPECT_EQ(OSGetEnvironmentLong("a"), 4);
                EXPECT_EQ(Text("b"), "");
                EXPECT_EQ(Text("old"), "none");
                EXPECT_EQ(OSGetEnvironmentLong("kept"), 2);
            };
            if (other)
                std::thread(read).join();
            else
                read();
        }
    }
    EXPECT_EQ(ReadWholeFile(Ini()), "[Pavex]\nkept=2\na=4\nb=\n");
    OSSetEnvironmentInt("a", 5);
    EXPECT_NE(ReadWholeFile(Ini()).find("a=5"), std::string::npos);
}

TEST_F(Environment, WritesWhatOtherThreadsSetDuringABatchAtOnceAndTheLastOneCounts)
{
    {
        const VariableBatch batch;
        OSSetEnvironmentInt("earlier", 1);
        std::thread([] {
            OSSetEnvironmentInt("earlier", 2);
            OSSetEnvironmentInt("later", 2);
        }).join();
        EXPECT_EQ(ReadWholeFile(Ini()).find("earlier=1"), std::string::npos);
        EXPECT_NE(ReadWholeFile(Ini()).find("later=2"), std::string::npos);
        EXPECT_EQ(OSGetEnvironmentLong("earlier"), 2);
        OSSetEnvironmentInt("later", 3);
    }
    EXPECT_EQ(OSGetEnvironmentLong("earlier"), 2);
    EXPECT_EQ(OSGetEnvironmentLong("later"), 3);
}

TEST_F(Environment, TellsOfABatchThatCouldNotBeWritten)
{
    WriteWholeFile(Ini(), "[Pavex]\na=1\n");
    chmod(Ini().c_str(), 0400);
    {
        const VariableBatch batch;
        OSSetEnvironmentInt("a", 2);
        EXPECT_EQ(TakeFailedWrite(), "");
    }
    EXPECT_NE(TakeFailedWrite().find("read-only"), std::string::npos);
    EXPECT_EQ(OSGetEnvironmentLong("a"), 1);
}

TEST_F(Environment, TellsAbsentFromEmpty)
{
    EXPECT_EQ(Text("Absent"), "none");
    EXPECT_EQ(OSGetEnvironmentLong("Absent"), 0);
    OSSetEnvironmentVariable("Gone", "x");
    OSSetEnvironmentVariable("Gone", nullptr);
    EXPECT_EQ(Text("Gone"), "none");
}

TEST_F(Environment, ChangesSeveralVariablesAtOnce)
{
    WriteWholeFile(Ini(), "[Pavex]\n; a comment\na=1\nb=2\n\n[Other]\na=3\n");
    OverrideVariable("a", "9");
    std::map<std::string, std::string> seen;
    EXPECT_TRUE(ChangeVariables([&seen](const std::map<std::string, std::string>& variables) {
        seen = variables;
        return VariableChanges{{"A", std::nullopt}, {"b", "20"}, {"c", " x"}};
    }));
    ClearOverrides();
    EXPECT_EQ(seen, (std::map<std::string, std::string>{{"a", "1"}, {"b", "2"}}));
    EXPECT_EQ(FileVariables(), (std::map<std::string, std::string>{{"b", "20"}, {"c", " x"}}));
    EXPECT_EQ(ReadWholeFile(Ini()), "[Pavex]\nb=20\nc=\" x\"\n\n\n[Other]\na=3\n");
}

TEST_F(Environment, ChangesNoneOfSeveralVariablesWhenOneCannotBeWritten)
{
    WriteWholeFile(Ini(), "[Pavex]\na=1\n");
    EXPECT_FALSE(ChangeVariables([](const std::map<std::string, std::string>&) {
        return VariableChanges{{"a", "2"}, {"b=", "3"}};
    }));
    EXPECT_NE(TakeFailedWrite(), "");
    EXPECT_EQ(ReadWholeFile(Ini()), "[Pavex]\na=1\n");
}

TEST_F(Environment, GivesTheNumberThatATextBeginsWith)
{
    WriteWholeFile(Ini(), "[Pavex]\na=12abc\nb=abc\nc= 7 \nd=99999999999999999999\n");
    EXPECT_EQ(OSGetEnvironmentLong("a"), 12);
    EXPECT_EQ(OSGetEnvironmentLong("b"), 0);
    EXPECT_EQ(OSGetEnvironmentLong("c"), 7);
    EXPECT_EQ(OSGetEnvironmentLong("d"), LONG_MAX);
}

TEST_F(Environment, CutsBetweenCharactersAndProbesWithTwoBytes)
{
    OSSetEnvironmentVariable("v", "a\xC3\xBC");
    EXPECT_EQ(Text("v", 3), "a");
    EXPECT_EQ(Text("v", 2), "a");
    EXPECT_EQ(Text("v", 1), "");
    EXPECT_TRUE(OSGetEnvironmentString("v", nullptr, 0));
}

TEST_F(Environment, SeesChangesThatOthersMake)
{
    for (int i = 0; i < 20; ++i) {
        WriteWholeFile(Ini(), "[Pavex]\nv=" + std::to_string(i % 10) + "\n");  // same length, same file
        EXPECT_EQ(OSGetEnvironmentLong("v"), i % 10);
    }
    std::filesystem::remove(Ini());
    EXPECT_EQ(Text("v"), "none");
}

TEST_F(Environment, OverridesAreReadAndNotWritten)
{
    OSSetEnvironmentInt("v", 1);
    OverrideVariable("V", "2");
    EXPECT_EQ(OSGetEnvironmentLong("v"), 2);
    OSSetEnvironmentInt("v", 3);
    EXPECT_EQ(OSGetEnvironmentLong("v"), 2);
    EXPECT_NE(ReadWholeFile(Ini()).find("v=3\n"), std::string::npos);
    ClearOverrides();
    EXPECT_EQ(OSGetEnvironmentLong("v"), 3);
}

TEST_F(Environment, ReplacesTheFileWholeAndPrivate)
{
    WriteWholeFile(Ini(), "[Pavex]\nv=1\n");
    chmod(Ini().c_str(), 0644);
    struct stat before {};
    stat(Ini().c_str(), &before);
    ASSERT_TRUE(SetVariable("v", "2"));
    struct stat after {};
    stat(Ini().c_str(), &after);
    EXPECT_NE(before.st_ino, after.st_ino);
    EXPECT_EQ(after.st_mode & 0777, 0600u);
    ASSERT_TRUE(SetVariable("v", "2"));  // unchanged: not written
    struct stat unchanged {};
    stat(Ini().c_str(), &unchanged);
    EXPECT_EQ(after.st_ino, unchanged.st_ino);
}

TEST_F(Environment, WritesThroughASymbolicLink)
{
    WriteWholeFile(dir / "real.ini", "[Pavex]\nv=1\n");
    std::filesystem::create_symlink(dir / "real.ini", Ini());
    ASSERT_TRUE(SetVariable("v", "2"));
    EXPECT_TRUE(std::filesystem::is_symlink(Ini()));
    EXPECT_NE(ReadWholeFile(dir / "real.ini").find("v=2"), std::string::npos);
}

TEST_F(Environment, LeavesTheFileAloneWhenItCannotBeWritten)
{
    std::vector<std::string> logged;
    SetLogObserver([&](const LogEntry& entry) {
        logged.push_back(entry.text);
        return true;
    });
    ASSERT_TRUE(SetVariable("v", "1"));
    const std::string before = ReadWholeFile(Ini());
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    const rlimit full{0, old.rlim_max};  // no file may grow: as on a full disk
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &full);
    const bool done = SetVariable("v", "2");
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(done);
    EXPECT_EQ(ReadWholeFile(Ini()), before);
    EXPECT_EQ(OSGetEnvironmentLong("v"), 1);
    ASSERT_EQ(logged.size(), 1u);
    EXPECT_NE(logged[0].find(Ini()), std::string::npos);
    for (const auto& entry : std::filesystem::directory_iterator(dir.Path()))
        EXPECT_EQ(entry.path().filename().string().find("pavex.ini."),
                  entry.path().filename() == "pavex.ini.lock" ? 0 : std::string::npos);
}

TEST_F(Environment, WritesNothingOverAFileItCannotRead)
{
    std::filesystem::create_directory(Ini());  // opens, and cannot be read
    EXPECT_FALSE(SetVariable("v", "1"));
    EXPECT_TRUE(std::filesystem::is_directory(Ini()));
    EXPECT_EQ(Text("v"), "none");
    EXPECT_FALSE(SetVariable("bad=name", "1"));
}

TEST_F(Environment, LeavesAReadOnlyFileAlone)
{
    ASSERT_TRUE(SetVariable("v", "1"));
    chmod(Ini().c_str(), 0400);
    const std::string before = ReadWholeFile(Ini());
    EXPECT_TRUE(SetVariable("v", "1")) << "nothing to write";
    EXPECT_FALSE(SetVariable("v", "2"));
    EXPECT_EQ(ReadWholeFile(Ini()), before);
}

TEST_F(Environment, TellsTheFirstFailedWriteOnce)
{
    WriteWholeFile(Ini(), "[Pavex]\nv=1\n");
    EXPECT_EQ(TakeFailedWrite(), "");
    chmod(Ini().c_str(), 0400);
    OSSetEnvironmentInt("v", 2);
    EXPECT_FALSE(SetVariable("bad=name", "1"));
    ASSERT_TRUE(SetVariable("v", "1"));
    EXPECT_EQ(TakeFailedWrite(), "the settings file " + Ini() + " could not be written: it is read-only");
    EXPECT_EQ(TakeFailedWrite(), "");
}

TEST_F(Environment, GivesUpAWriteThatAnotherProgramLocksOutTooLong)
{
    ASSERT_TRUE(SetVariable("v", "1"));
    const Descriptor held(open((Ini() + ".lock").c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(flock(held.Get(), LOCK_EX), 0);
    SetSettingsLockTimeout(20);
    EXPECT_FALSE(SetVariable("v", "2"));
    EXPECT_EQ(TakeFailedWrite(),
              "the settings file " + Ini() + " could not be written: another program keeps it locked");
    flock(held.Get(), LOCK_UN);
    SetSettingsLockTimeout(10'000);
    EXPECT_EQ(OSGetEnvironmentLong("v"), 1);
    EXPECT_TRUE(SetVariable("v", "2"));
}

TEST_F(Environment, LosesNothingWhenSeveralProcessesWrite)
{
    constexpr int kProcesses = 4;
    constexpr int kWrites = 25;
    std::vector<pid_t> children;
    for (int process = 0; process < kProcesses; ++process) {
        const pid_t child = fork();
        if (child == 0) {
            bool done = true;
            for (int i = 0; i < kWrites; ++i)
                done = SetVariable("p" + std::to_string(process) + "_" + std::to_string(i), std::to_string(i)) && done;
            _exit(done ? 0 : 1);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    for (int process = 0; process < kProcesses; ++process) {
        for (int i = 0; i < kWrites; ++i)
            EXPECT_EQ(Text(("p" + std::to_string(process) + "_" + std::to_string(i)).c_str()), std::to_string(i));
    }
}

TEST_F(Environment, LosesNothingWhenSeveralThreadsWriteAndRead)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < 20; ++i) {
                const std::string name = "t" + std::to_string(t) + "_" + std::to_string(i);
                OSSetEnvironmentInt(name.c_str(), i);
                EXPECT_EQ(OSGetEnvironmentLong(name.c_str()), i);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (int t = 0; t < 4; ++t)
        EXPECT_EQ(OSGetEnvironmentLong(("t" + std::to_string(t) + "_19").c_str()), 19);
}
