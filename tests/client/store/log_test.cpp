// tests/client/store/log_test.cpp: the log file, the add-in's texts in it, and several writers.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "client/foundation/host.h"
#include "client/store/charset.h"
#include "client/store/timedate.h"
#include "tests/client/store/host_fixture.h"

using namespace pavex;

class LogFile : public HostFixture {
protected:
    LogFile()
    {
        setenv("TZ", "UTC", 1);
        tzset();
        SetClock(&clock);
    }
    ~LogFile() override { SetClock(nullptr); }
    void UseTexts(const std::string& texts)
    {
        std::filesystem::create_directories(dir / "bundle/en.lproj");
        WriteWholeFile(dir / "bundle/en.lproj/libtorvik.strings", texts);
        SetUserLanguages({"en"});
        SetAddInBundle(dir / "bundle");
    }
    std::vector<std::string> Lines() const
    {
        std::vector<std::string> lines;
        std::istringstream text(ReadWholeFile(CurrentPlaces().log));
        for (std::string line; std::getline(text, line);)
            lines.push_back(line);
        return lines;
    }

    VirtualClock clock{179525587200ull};  // 2026-11-21 10:11:12
};

using Lines = std::vector<std::string>;

TEST_F(LogFile, HasOneLineAnEntry)
{
    UseTexts("\"144\" = \"Pass over %s stopped\";\n\"128\" = \"Started\";\n");
    LogEvent(144, 0, 719, "mail.vlt");
    clock.Delay(1000);
    LogEvent(128, 0, 0);
    Log("client's own");
    EXPECT_EQ(Lines(), (::Lines{"2026-11-21 10:11:12 144 Pass over mail.vlt stopped (status 719)",
                                "2026-11-21 10:11:13 128 Started", "2026-11-21 10:11:13 0 client's own"}));
}

TEST_F(LogFile, PrintsEveryKindOfArgument)
{
    UseTexts("\"1\" = \"%5$T %1$s %2$d %3$u %4$X\";\n");
    const TIMEDATE time = *TimeFromIso("2007-03-05T14:00:00Z");
    LogEvent(1, 0, 0, ScsFromUtf8("\xF0\x9F\x98\x80").c_str(), -1, 4294967295u, 255u, &time);
    EXPECT_EQ(Lines(), ::Lines{"2026-11-21 10:11:12 1 2007-03-05 14:00:00.00 \xF0\x9F\x98\x80 -1 4294967295 FF"});
}

TEST_F(LogFile, TakesNullArgumentsAsEmpty)
{
    UseTexts("\"1\" = \"<%s> <%T>\";\n");
    LogEvent(1, 0, 0, nullptr, nullptr);
    EXPECT_EQ(Lines(), ::Lines{"2026-11-21 10:11:12 1 <> <>"});
}

TEST_F(LogFile, ReadsNoArgumentsForMalformedOrMissingTexts)
{
    UseTexts("\"1\" = \"%s %ld\";\n");
    LogEvent(1, 0, 0, 1, 2);
    LogEvent(2, 0, 5, 1, 2);
    SetAddInBundle("");
    LogEvent(3, 0, 0, 1);
    EXPECT_EQ(Lines(), (::Lines{"2026-11-21 10:11:12 1 %s %ld", "2026-11-21 10:11:12 2 event 2 (status 5)",
                                "2026-11-21 10:11:12 3 event 3"}));
}

TEST_F(LogFile, KeepsAnEntryOnItsLine)
{
    UseTexts("\"1\" = \"%s\";\n");
    LogEvent(1, 0, 0, "a\n2026-11-21 10:11:12 999 forged");
    Log(std::string(200000, 'x') + "\r");
    ASSERT_EQ(Lines().size(), 2u);
    EXPECT_EQ(Lines()[0], "2026-11-21 10:11:12 1 a\\n2026-11-21 10:11:12 999 forged");
    EXPECT_EQ(Lines()[1], "2026-11-21 10:11:12 0 " + std::string(200000, 'x') + "\\x0D");
}

TEST_F(LogFile, ShowsEntriesToTheObserverWhichMayKeepThemOut)
{
    UseTexts("\"1\" = \"%s %d %T\";\n");
    std::vector<LogEntry> seen;
    SetLogObserver([&](const LogEntry& entry) {
        seen.push_back(entry);
        return entry.id != 1;
    });
    const TIMEDATE time = *TimeFromIso("2007-03-05");
    LogEvent(1, 0, 719, "a", 2, &time);
    Log("kept");
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0].text, "a 2 2007-03-05");
    EXPECT_EQ(seen[0].status, 719);
    EXPECT_EQ(seen[0].arguments, (std::vector<std::variant<std::string, int64_t>>{"a", int64_t{2}, "2007-03-05"}));
    EXPECT_EQ(Lines(), ::Lines{"2026-11-21 10:11:12 0 kept"});
}

TEST_F(LogFile, IsPrivateAndAppendedTo)
{
    Log("one");
    struct stat status {};
    stat(CurrentPlaces().log.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    Log("two");
    EXPECT_EQ(Lines().size(), 2u);
    std::filesystem::remove(CurrentPlaces().log);  // taken away by a log rotation
    Log("three");
    EXPECT_EQ(Lines(), ::Lines{"2026-11-21 10:11:12 0 three"});
}

TEST_F(LogFile, IsNotMissedWhenItCannotBeWritten)
{
    std::filesystem::remove_all(dir / "log");
    Log("dropped");
    std::filesystem::create_directory(dir / "log");
    std::filesystem::create_symlink("/dev/full", CurrentPlaces().log);
    Log("dropped");
    std::filesystem::remove(CurrentPlaces().log);
    Log("kept");
    EXPECT_EQ(Lines(), ::Lines{"2026-11-21 10:11:12 0 kept"});
}

TEST_F(LogFile, KeepsTheLinesOfSeveralProcessesAndThreadsWhole)
{
    const std::string text(300, 'x');
    std::vector<pid_t> children;
    for (int process = 0; process < 3; ++process) {
        const pid_t child = fork();
        if (child == 0) {
            for (int i = 0; i < 100; ++i)
                Log(text);
            _exit(0);
        }
        children.push_back(child);
    }
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&text] {
            for (int i = 0; i < 100; ++i)
                Log(text);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const pid_t child : children)
        waitpid(child, nullptr, 0);
    EXPECT_EQ(Lines(), ::Lines(600, "2026-11-21 10:11:12 0 " + text));
}
