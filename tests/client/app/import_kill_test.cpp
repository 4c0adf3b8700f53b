// tests/client/app/import_kill_test.cpp: imports killed at random moments, and two at once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <random>
#include <sstream>
#include <thread>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

constexpr int kMessages = 3000;
constexpr int kRounds = 5;  // each in a home of its own
constexpr int kKills = 4;   // in each round

std::string Mailbox()
{
    std::string mbox;
    for (int i = 0; i < kMessages; ++i) {
        const std::string number = std::to_string(i);
        mbox += "From ann@example.org Mon Mar  5 14:00:00 2007\nFrom: ann@example.org\nTo: bo@example.org\n"
                "Date: Mon, 5 Mar 2007 14:00:00 +0000\nSubject: Mail " +
                number + "\nMessage-ID: <m" + number + "@example.org>\n\n" +
                std::string(static_cast<size_t>(i % 7) * 500, 'x') + "\n\n";
    }
    return mbox;
}

// The subjects of all notes, sorted.
std::vector<std::string> Subjects(ProgramHome& home)
{
    std::vector<std::string> subjects;
    std::istringstream lines(home.Run({"note", "list", "--db", "mail.vlt", "--json"}).out);
    for (std::string line; std::getline(lines, line);)
        subjects.push_back(nlohmann::json::parse(line)["subject"].get<std::string>());
    std::sort(subjects.begin(), subjects.end());
    return subjects;
}

std::vector<std::string> AllSubjects()
{
    std::vector<std::string> subjects;
    for (int i = 0; i < kMessages; ++i)
        subjects.push_back("Mail " + std::to_string(i));
    std::sort(subjects.begin(), subjects.end());
    return subjects;
}

// How long an import takes that nobody disturbs.
long WholeImportMicroseconds(const std::string& mailbox)
{
    ProgramHome home;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(home.Run({"import", mailbox}).exit, 0);
    const auto end = std::chrono::steady_clock::now();
    EXPECT_EQ(Subjects(home), AllSubjects());
    return std::chrono::duration_cast<std::chrono::microseconds>(end - start).count();
}

// Kills kKills imports, each at a random moment.  One that ended before its kill came does not count; the next
// are then given less time, however fast or busy the machine is.
void KillImports(ProgramHome& home, const std::string& mailbox, long longest, std::mt19937& random)
{
    for (int killed = 0; killed < kKills;) {
        const std::unique_ptr<Process> import = home.Start({"import", mailbox});
        std::this_thread::sleep_for(std::chrono::microseconds(std::uniform_int_distribution<long>(0, longest)(random)));
        import->Signal(SIGKILL);
        if (import->Wait().exit == 128 + SIGKILL)
            ++killed;
        else
            longest /= 2;
    }
}

TEST(Killed, ImportLeavesNothingThatTheNextWholeOneDoesNotPutRight)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const TemporaryDirectory folder;
    const std::string mailbox = folder / "inbox.mbox";
    WriteWholeFile(mailbox, Mailbox());
    const long whole = WholeImportMicroseconds(mailbox);
    for (int round = 0; round < kRounds; ++round) {
        ProgramHome home;
        KillImports(home, mailbox, whole, random);
        const nlohmann::json report = home.RunJson({"import", "--json", mailbox});
        EXPECT_EQ(report["added"].get<int>() + report["unchanged"].get<int>(), kMessages) << report;
        EXPECT_EQ(Subjects(home), AllSubjects());
        EXPECT_EQ(home.RunJson({"import", "--json", mailbox})["unchanged"], kMessages);
    }
}

TEST(Import, TakesEveryMessageOnceWhenTwoImportTheSame)
{
    ProgramHome home;
    const std::string mailbox = home.Path("inbox.mbox");
    WriteWholeFile(mailbox, Mailbox());
    const std::unique_ptr<Process> first = home.Start({"import", mailbox});
    const std::unique_ptr<Process> second = home.Start({"import", mailbox});
    for (Process* import : {first.get(), second.get()}) {
        const ProgramResult result = import->Wait();
        EXPECT_EQ(result.exit, 0);
        EXPECT_EQ(result.err, "");
    }
    EXPECT_EQ(Subjects(home), AllSubjects());
    EXPECT_EQ(home.RunJson({"import", "--json", mailbox})["unchanged"], kMessages);
}

}  // namespace
}  // namespace pavex
