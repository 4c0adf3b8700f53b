// tests/addin/schedule_test.cpp: the thread's priorities, requests in the middle of a cycle, and waits over
// the wrap of the 32-bit timer.
#include "addin/lifecycle.h"
#include "addin/loop.h"
#include "addin/pass.h"
#include "settings/settings.h"
#include "strings/string_ids.h"
#include "tests/addin/addin_fixture.h"
#include "tests/addin/call_record.h"
#include "tests/support/fault_plan.h"

namespace {

using Texts = std::vector<std::string>;

class Schedule : public AddInTest {
protected:
    void ConfigureEmpty(std::initializer_list<int> slots)
    {
        for (const int slot : slots) {
            const std::string name = "db" + std::to_string(slot) + ".vlt";
            Mailbox(PathOf(name), name);
            Configure(slot, PathOf(name));
        }
    }
};

TEST_F(Schedule, TheThreadBeginsAtNormalPriorityAndWaitsAtLowPriority)
{
    CallRecord record;
    int atStart = CallRecord::kNeverSet;
    pavex::SetLogObserver([&](const pavex::LogEntry& entry) {
        if (entry.id == kLogThreadStarted)
            atStart = record.priority;
        return true;
    });
    clock_.At(1500, [] { bShutDownThread = 1; });
    ThreadProc(nullptr);
    EXPECT_EQ(atStart, 0);
    EXPECT_EQ(record.pauses, (Texts{"delay 1000 at -1", "delay 1000 at -1"}));
    EXPECT_EQ(record.priority, 0);
}

TEST_F(Schedule, AThreadThatIsToEndAlreadyHasSetItsPriorityFirst)
{
    CallRecord record;
    bShutDownThread = 1;
    ThreadProc(nullptr);
    EXPECT_EQ(record.priority, 0);
}

TEST_F(Schedule, TheThreadGetsTheStackOfABackgroundThread)
{
    CallRecord record;
    const NamedFault noThread("OSCreateThread");
    EXPECT_FALSE(PavexDesktopIndex());
    EXPECT_EQ(record.stackKinds, std::vector<int>{0});
}

TEST_F(Schedule, AYieldIsMadeAtLowPriority)
{
    CallRecord record;
    EnsureIdle();
    EXPECT_EQ(record.pauses, Texts{"preempt at -1"});
    EXPECT_EQ(record.priority, 0);
}

TEST_F(Schedule, AYieldThatARequestForbidsEndsAtNormalPriorityToo)
{
    CallRecord record;
    bStartSoon = 1;
    EnsureIdle();
    EXPECT_TRUE(record.pauses.empty());
    EXPECT_EQ(record.priority, 0);
}

TEST_F(Schedule, AWaitPollsOnceASecondAtLowPriority)
{
    CallRecord record;
    SleepForMilli(2500, true);
    EXPECT_EQ(record.pauses, (Texts{"delay 1000 at -1", "delay 1000 at -1", "delay 500 at -1"}));
    EXPECT_EQ(record.priority, 0);
}

TEST_F(Schedule, NoWaitBeginsWhenTheThreadIsToEnd)
{
    CallRecord record;
    bShutDownThread = 1;
    SleepForMilli(2500, false);
    EXPECT_TRUE(record.pauses.empty());
    EXPECT_EQ(record.priority, 0);
}

TEST_F(Schedule, AHistoryPassInTheWaitLeavesTheWaitAtLowPriority)
{
    ConfigureEmpty({15});
    SetVariable("GoogleDebug", "1");
    dwHistoryCount = OSGetSystemTimer() - 60000;
    CallRecord record;
    SleepForMilli(1500, false);
    EXPECT_EQ(LoggedPaths(kLogOpened), Texts{"db15.vlt"});
    ASSERT_GE(record.pauses.size(), 2U);
    EXPECT_EQ(Texts(record.pauses.end() - 2, record.pauses.end()), (Texts{"delay 1000 at -1", "delay 500 at -1"}));
}

TEST_F(Schedule, NotesAreIndexedAtNormalPriorityWithAYieldBetween)
{
    Mailbox mail(PathOf("mail.vlt"), "Mail");
    mail.AddMany(3, "note");
    Configure(0, mail.Path());
    SetVariable("GoogleWaitTime", "0");
    CallRecord record;
    std::vector<int> priorities;
    std::vector<size_t> pauses;
    record.beforeNote = [&](const INDEXCONTEXT&) {
        priorities.push_back(record.priority);
        pauses.push_back(record.pauses.size());
    };
    IndexFile(0, false);
    EXPECT_EQ(priorities, (std::vector<int>{0, 0, 0}));
    ASSERT_EQ(pauses.size(), 3U);
    EXPECT_GT(pauses[1], pauses[0]);
    EXPECT_GT(pauses[2], pauses[1]);
}

TEST_F(Schedule, ARequestToStartSoonDuringACycleSkipsItsHistoryAndBringsTheNextCycleAtOnce)
{
    ConfigureEmpty({0, 15});
    SetVariable("GoogleDebug", "1");
    bool asked = false;
    pavex::SetLogObserver([&](const pavex::LogEntry& entry) {
        log_.push_back(entry);
        if (entry.id == kLogOpened && !asked) {
            asked = true;
            dwHistoryCount = OSGetSystemTimer() - 60000;  // due
            StartSoon();
        }
        return true;
    });
    clock_.At(500, [] { StartSoon(); });
    clock_.At(1500, [] { bShutDownThread = 1; });
    IndexingLoop();
    EXPECT_EQ(LoggedPaths(kLogOpened), (Texts{"db0.vlt", "db0.vlt", "db15.vlt"}));
}

TEST_F(Schedule, ACycleEndsWithTheHistoryWhenThatIsDue)
{
    ConfigureEmpty({0, 15});
    SetVariable("GoogleDebug", "1");
    CallRecord record;
    pavex::SetLogObserver([this](const pavex::LogEntry& entry) {
        log_.push_back(entry);
        if (entry.id == kLogOpened)
            dwHistoryCount = OSGetSystemTimer() - 60000;
        return true;
    });
    int questions = 0;  // whether the client ends: asked before the cycle and after it
    Texts visited;
    record.beforeEntry = [&] {
        if (++questions == 2) {
            visited = LoggedPaths(kLogOpened);
            bShutDownThread = 1;
        }
    };
    clock_.At(500, [] { StartSoon(); });
    IndexingLoop();
    EXPECT_EQ(visited, (Texts{"db0.vlt", "db15.vlt"}));
}

TEST_F(Schedule, AResetPendingAtTheEndOfACycleSkipsItsHistory)
{
    ConfigureEmpty({0, 15});
    SetVariable("GoogleDebug", "1");
    pavex::SetLogObserver([this](const pavex::LogEntry& entry) {
        log_.push_back(entry);
        if (entry.id == kLogOpened) {
            dwHistoryCount = OSGetSystemTimer() - 60000;
            bStopAndReset = 1;
        }
        return true;
    });
    clock_.At(500, [] { StartSoon(); });
    clock_.At(2500, [] { bShutDownThread = 1; });
    IndexingLoop();
    EXPECT_EQ(LoggedPaths(kLogOpened), Texts{"db0.vlt"});
}

TEST_F(Schedule, ACycleForgetsTheProgressForAResetThatIsPending)
{
    Mailbox mail(PathOf("mail.vlt"), "Mail");
    mail.AddMany(3, "note");
    Configure(0, mail.Path());
    SetVariable("GoogleWaitTime", "0");
    IndexFile(0, false);
    bStopAndReset = 1;  // alone, without what StopAndReset forgets itself
    clock_.At(500, [] { StartSoon(); });
    clock_.At(1500, [] { bShutDownThread = 1; });
    IndexingLoop();
    EXPECT_EQ(GlobalContext.indexed, 6U);
    EXPECT_EQ(bStopAndReset, 0);
}

TEST_F(Schedule, WithoutAPeriodACycleComesEveryFiveMinutes)
{
    ConfigureEmpty({0});
    getIniVariables();
    dwIniFreq = 0;
    bIniDebug = 1;
    clock_.At(299999, [this] { EXPECT_EQ(Logged(kLogOpened), 0); });
    clock_.At(300500, [] { bShutDownThread = 1; });
    IndexingLoop();
    EXPECT_EQ(Logged(kLogOpened), 1);
}

TEST_F(Schedule, AnIdleDelayLongerThanThePeriodIsNotWaitedFor)
{
    ConfigureEmpty({0});
    SetVariable("GoogleDebug", "1");
    std::vector<uint64_t> visits;
    pavex::SetLogObserver([&](const pavex::LogEntry& entry) {
        if (entry.id == kLogOpened)
            visits.push_back(clock_.TimerMilliseconds());
        if (entry.id == kLogNothingModified)
            dwIdleDelay = 300001;
        return true;
    });
    clock_.At(600500, [] { bShutDownThread = 1; });
    IndexingLoop();
    EXPECT_EQ(visits, (std::vector<uint64_t>{300000, 600000}));
}

TEST_F(Schedule, TheStoresStateOfTheThreadEndsWithTheLoop)
{
    CallRecord record;
    clock_.At(1500, [] { bShutDownThread = 1; });
    ThreadProc(nullptr);
    EXPECT_EQ(record.threadEnds, 1);
    bShutDownThread = 0;
    const NamedFault fault("PavexInitThread", 1234);
    ThreadProc(nullptr);
    EXPECT_EQ(record.threadEnds, 1);  // what did not begin does not end
}

TEST_F(Schedule, TheLoopLogsItsBeginningAndItsEndWhenDebugging)
{
    SetVariable("GoogleDebug", "1");
    clock_.At(1500, [] { bShutDownThread = 1; });
    IndexingLoop();
    EXPECT_EQ(LogIds(), (std::vector<unsigned>{kLogLoop, kLogLoop}));
}

TEST_F(Schedule, TheLoopLogsNothingOfItselfOtherwise)
{
    SetVariable("GDSIndexEnabled", "0");
    clock_.At(301500, [] { bShutDownThread = 1; });
    IndexingLoop();
    EXPECT_TRUE(log_.empty());
}

constexpr uint64_t kWrap = 0x100000000;
constexpr uint64_t kBeforeWrap = kWrap - 150000;  // half of the default period

class WrappingTimer : public Schedule {
protected:
    WrappingTimer() : wrapping_(1'164'067'200ULL * 100, kBeforeWrap)
    {
        pavex::SetClock(&wrapping_);
        dwHistoryCount = OSGetSystemTimer();
    }
    ~WrappingTimer() override { pavex::SetClock(&clock_); }

    pavex::VirtualClock wrapping_;
};

TEST_F(WrappingTimer, AStopIsHonouredInTheHalfOfTheWaitAfterTheWrap)
{
    ConfigureEmpty({0});
    SetVariable("GoogleDebug", "1");
    wrapping_.At(kWrap + 10300, [] { bShutDownThread = 1; });
    IndexingLoop();
    EXPECT_EQ(wrapping_.TimerMilliseconds(), kWrap + 11000);
    EXPECT_TRUE(LoggedPaths(kLogOpened).empty());
}

TEST_F(WrappingTimer, ARequestToStartSoonIsHonouredAfterTheWrap)
{
    ConfigureEmpty({0});
    SetVariable("GoogleDebug", "1");
    wrapping_.At(kWrap + 10300, [] { StartSoon(); });
    wrapping_.At(kWrap + 11500, [] { bShutDownThread = 1; });
    IndexingLoop();
    EXPECT_EQ(LoggedPaths(kLogOpened), Texts{"db0.vlt"});
    EXPECT_EQ(wrapping_.TimerMilliseconds(), kWrap + 12000);
}

TEST_F(WrappingTimer, AWaitOverTheWrapLastsAsLongAsAnyOther)
{
    SleepForMilli(300000, true);
    EXPECT_EQ(wrapping_.TimerMilliseconds(), kBeforeWrap + 300000);
}

TEST_F(WrappingTimer, AResetEndsAPausesHalfAfterTheWrap)
{
    wrapping_.At(kWrap + 2500, [] { bStopAndReset = 1; });
    SleepForMilli(300000, true);
    EXPECT_EQ(wrapping_.TimerMilliseconds(), kWrap + 3000);
}

}  // namespace
