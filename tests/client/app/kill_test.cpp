// tests/client/app/kill_test.cpp: index killed at random moments while its database is being changed.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <random>
#include <thread>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;

constexpr int kKills = 200;
constexpr int kNotes = 60;

std::string Unid(int number)
{
    std::string digits = std::to_string(number);
    return "0011223344556677" + std::string(16 - digits.size(), '0') + digits;
}

// A note in its n-th version: now and then as another kind, its text of another length.
std::string NoteJson(int number, unsigned version)
{
    constexpr const char* kForms[] = {"Memo", "Memo", "Task", "Memo", "Person"};
    return R"({"items":{"Form":")" + std::string(kForms[version % 5]) + R"(","Subject":"Note )" +
           std::to_string(number) + " version " + std::to_string(version) +
           R"(","From":"ann@example.org","SendTo":["bo@example.org"],"PostedDate":{"time":"2007-03-05T14:00:00Z"},)"
           R"("CalendarDateTime":{"times":["2007-03-05T14:00:00Z"]},)"
           R"("Body":{"richtext":[")" +
           std::string(version % 7 * 300, 'x') +
           R"("]}},"created":"2007-03-01T08:00:00Z","modified":"2007-03-02T09:30:00Z","unid":")" + Unid(number) +
           "\"}\n";
}

// Changes notes, and deletes some, through the program until told to end.
class Changer {
public:
    Changer(ProgramHome& home, unsigned seed) : home_(home), random_(seed), thread_([this] { Run(); }) {}
    ~Changer()
    {
        ended_ = true;
        thread_.join();
    }
    Changer(const Changer&) = delete;
    Changer& operator=(const Changer&) = delete;

private:
    unsigned Draw(unsigned below) { return std::uniform_int_distribution<unsigned>(0, below - 1)(random_); }

    void Run()
    {
        for (unsigned round = 1; !ended_; ++round) {
            std::string notes;
            for (int i = 0; i < 3; ++i)
                notes += NoteJson(static_cast<int>(Draw(kNotes)), round);
            (void)home_.Put("mail.vlt", notes);
            if (Draw(4) == 0)  // a note that is gone already cannot be deleted
                (void)home_.Run({"note", "delete", "--db", "mail.vlt", Unid(static_cast<int>(Draw(kNotes)))});
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
        }
    }

    ProgramHome& home_;
    std::mt19937 random_;
    std::atomic<bool> ended_{false};
    std::thread thread_;
};

TEST(Killed, IndexLeavesNothingThatTheNextWholePassDoesNotPutRight)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    ProgramHome home;
    std::string notes;
    for (int i = 0; i < kNotes; ++i)
        notes += NoteJson(i, 0);
    (void)home.Put("mail.vlt", notes);
    home.Enable();

    ProgramHome indexer;  // its own folder for the output of the runs that are killed
    {
        const Changer changer(home, seed);
        // A run that ended before its kill came does not count; the next are then given less time.
        for (int killed = 0, longest = 60; killed < kKills;) {
            Process index({TORVIK_BINARY_DIR "/bin/pavex", "--home", home.Path("home"), "index", "--full-speed"},
                          indexer.Path("index"));
            std::this_thread::sleep_for(
                std::chrono::milliseconds(std::uniform_int_distribution<int>(0, longest)(random)));
            index.Signal(SIGKILL);
            if (index.Wait().exit == 128 + SIGKILL)
                ++killed;
            else
                longest = std::max(20, longest - 1);
        }
    }

    (void)home.Index();
    const Metafiles metafiles = home.ReadMetafiles();
    EXPECT_EQ(home.OtherFiles(), std::vector<std::string>());

    ProgramHome fresh;
    fs::create_directories(fresh.Path("home"));
    fs::copy(home.Path("home/data"), fresh.Path("home/data"), fs::copy_options::recursive);
    fresh.Enable();
    (void)fresh.Index();
    EXPECT_EQ(metafiles, fresh.ReadMetafiles());
    EXPECT_FALSE(metafiles.empty());
    EXPECT_EQ(home.Index()["status"], 572);
}

}  // namespace
}  // namespace pavex
