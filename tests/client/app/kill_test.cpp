// tests/client/app/kill_test.cpp: index killed at random moments while its database is being changed.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <random>
#include <thread>

#include "tests/client/app/changing_notes.h"

namespace pavex {
namespace {

constexpr int kKills = 200;
constexpr int kNotes = 60;

TEST(Killed, IndexLeavesNothingThatTheNextWholePassDoesNotPutRight)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    ProgramHome home;
    PutFirstVersions(home, kNotes);
    home.Enable();

    ProgramHome indexer;  // its own folder for the output of the runs that are killed
    {
        const Changer changer(home, kNotes, seed);
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
    ExpectAWholePassPutsItRight(home);
}

}  // namespace
}  // namespace pavex
