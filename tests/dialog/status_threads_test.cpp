// tests/dialog/status_threads_test.cpp: the status lines while an indexing thread counts.
#include <atomic>
#include <thread>

#include "addin/lifecycle.h"
#include "dialog/status_display.h"
#include "settings/progress.h"
#include "tests/dialog/dialog_fixture.h"

namespace {

class StatusThreads : public DialogFixture {};

TEST_F(StatusThreads, FollowAPassThatCountsOnAnotherThread)
{
    SetIni("GDSIndexEnabled", "1");
    SaveDatabases(1);
    std::atomic<bool> stop = false;
    std::thread indexing([&stop] {
        for (uint32_t note = 0; !stop; note = (note + 1) % 100) {
            GlobalContext.inProgress = note % 2;
            GlobalContext.total = 100;
            GlobalContext.processed = note;
            if (note == 50) {
                const TIMEDATE since = SomeTime(1);
                const TIMEDATE until = SomeTime(2);
                SetDbTimestamp(0, &since, &until, note, note, 100);
            }
            std::this_thread::yield();
        }
    });
    Inspect([](pavex::Dialog& dialog) {
        for (int tick = 0; tick < 200; ++tick) {
            dialog.SendAllTimers();
            const std::string& line = dialog.Find(kTextOverallStatus)->text;
            EXPECT_TRUE(line.starts_with("<203>109:") || line == "<203><107>") << line;
        }
    });
    stop = true;
    indexing.join();
}

}  // namespace
