// tests/addin/loop_test.cpp: the schedule, on the virtual clock: every wait and request at its moment.
#include "addin/loop.h"

#include "addin/lifecycle.h"
#include "settings/progress.h"
#include "strings/string_ids.h"
#include "tests/addin/addin_fixture.h"

namespace {

constexpr uint64_t kMinute = 60000;
constexpr uint64_t kHour = 60 * kMinute;

class Loop : public AddInTest {
protected:
    uint64_t Now() { return clock_.TimerMilliseconds(); }
    void StopAt(uint64_t timer)
    {
        clock_.At(timer, [] { bShutDownThread = 1; });
    }
    // An empty database in each slot; with debugging on, each visit logs its path.
    void ConfigureEmpty(std::initializer_list<int> slots)
    {
        SetVariable("GoogleDebug", "1");
        for (const int slot : slots) {
            const std::string name = "db" + std::to_string(slot) + ".vlt";
            Mailbox(PathOf(name), name);
            Configure(slot, PathOf(name));
        }
    }
    std::vector<std::string> Visited() const { return LoggedPaths(kLogOpened); }
};

using Names = std::vector<std::string>;

TEST_F(Loop, TheFirstCycleComesAfterAWholePeriod)
{
    ConfigureEmpty({0});
    std::vector<size_t> visits;
    clock_.At(299999, [&] { visits.push_back(Visited().size()); });
    clock_.At(300500, [&] { visits.push_back(Visited().size()); });
    StopAt(300900);
    IndexingLoop();
    EXPECT_EQ(visits, (std::vector<size_t>{0, 1}));
}

TEST_F(Loop, ThePeriodIsTheSetOne)
{
    SetVariable("GDSFreqMinutes", "99");
    ConfigureEmpty({0});
    std::vector<size_t> visits;
    clock_.At(5939999, [&] { visits.push_back(Visited().size()); });
    clock_.At(5940500, [&] { visits.push_back(Visited().size()); });
    StopAt(5940900);
    IndexingLoop();
    EXPECT_EQ(visits, (std::vector<size_t>{0, 1}));
}

TEST_F(Loop, CyclesRotateThroughTheConfiguredSlots)
{
    ConfigureEmpty({0, 3, 7});
    iCurrentStart = 3;
    StopAt(15 * kMinute + 500);
    IndexingLoop();
    EXPECT_EQ(Visited(), (Names{"db3.vlt", "db7.vlt", "db0.vlt", "db7.vlt", "db0.vlt", "db3.vlt", "db0.vlt", "db3.vlt",
                                "db7.vlt"}));
}

TEST_F(Loop, WithoutAnySlotTheStartGoesRoundAndTheLoopGoesOn)
{
    SetVariable("GDSIndexEnabled", "1");
    iCurrentStart = 4;
    StopAt(5 * kMinute + 500);
    IndexingLoop();
    EXPECT_EQ(iCurrentStart, 4);
}

TEST_F(Loop, IndexingThatIsOffMakesNoCycle)
{
    ConfigureEmpty({0});
    SetVariable("GDSIndexEnabled", "0");
    StopAt(11 * kMinute);
    IndexingLoop();
    EXPECT_TRUE(Visited().empty());
    EXPECT_EQ(Logged(kLogIndexingOff), 2);
}

TEST_F(Loop, IndexingIsFoundSwitchedOnAtTheNextCycle)
{
    ConfigureEmpty({0});
    SetVariable("GDSIndexEnabled", "0");
    clock_.At(6 * kMinute, [this] { SetVariable("GDSIndexEnabled", "1"); });
    StopAt(10 * kMinute + 500);
    IndexingLoop();
    EXPECT_EQ(Visited(), Names{"db0.vlt"});
}

TEST_F(Loop, ARequestToStartSoonEndsTheWaitWithinASecond)
{
    ConfigureEmpty({0});
    std::vector<size_t> visits;
    clock_.At(10300, [] { StartSoon(); });
    clock_.At(11300, [&] { visits.push_back(Visited().size()); });
    StopAt(11900);
    IndexingLoop();
    EXPECT_EQ(visits, std::vector<size_t>{1});
    EXPECT_EQ(bStartSoon, 0);
}

TEST_F(Loop, ARequestToEndIsHonouredWithinASecond)
{
    ConfigureEmpty({0});
    StopAt(10300);
    IndexingLoop();
    EXPECT_LE(Now(), 11300U);
    EXPECT_TRUE(Visited().empty());
}

TEST_F(Loop, TheClientsEndEndsTheLoopAtItsNextCycle)
{
    ConfigureEmpty({0});
    clock_.At(1000, [] { pavex::RequestTermination(); });
    IndexingLoop();
    pavex::RequestTermination(false);
    EXPECT_EQ(Now(), 300000U);
    EXPECT_TRUE(Visited().empty());
}

TEST_F(Loop, OnBatteryNoDatabaseIsVisitedAndTheHistoryIsSkipped)
{
    ConfigureEmpty({0, 1, 15});
    RunOnBattery(true);
    dwHistoryCount = static_cast<uint32_t>(Now());
    clock_.At(5 * kMinute - 500, [] { dwHistoryCount = static_cast<uint32_t>(5 * kMinute - 500); });
    StopAt(5 * kMinute + 500);
    IndexingLoop();
    EXPECT_EQ(LoggedPaths(kLogOpened), (Names{"db15.vlt", "db15.vlt", "db15.vlt", "db15.vlt"}));  // while waiting
    EXPECT_EQ(iCurrentStart, 1);
}

TEST_F(Loop, GoingOnBatteryStopsTheCycleBeforeTheNextDatabase)
{
    ConfigureEmpty({0, 1});
    bool unplugged = false;
    pavex::SetLogObserver([&](const pavex::LogEntry& entry) {
        log_.push_back(entry);
        if (entry.id == kLogOpened && !unplugged) {
            unplugged = true;
            RunOnBattery(true);
        }
        return true;
    });
    StopAt(5 * kMinute + 500);
    IndexingLoop();
    EXPECT_EQ(Visited(), Names{"db0.vlt"});
}

TEST_F(Loop, TheHistoryIsIndexedOnceAMinuteWhileTheLoopSleeps)
{
    ConfigureEmpty({15});
    dwHistoryCount = static_cast<uint32_t>(Now());
    StopAt(4 * kMinute + 500);
    IndexingLoop();
    EXPECT_EQ(Visited().size(), 4U);
}

TEST_F(Loop, WithTheHistorySwitchedOffItsCheckStillRunsOnceAMinute)
{
    ConfigureEmpty({15});
    SetVariable("GDSNoIndexHistory", "1");
    dwHistoryCount = static_cast<uint32_t>(Now());
    StopAt(2 * kMinute + 30500);
    IndexingLoop();
    EXPECT_TRUE(Visited().empty());
    EXPECT_EQ(dwHistoryCount, 2 * kMinute);
}

TEST_F(Loop, AResetDuringACycleEndsItAndTheNextStartsFromTheBeginning)
{
    Mailbox first(PathOf("first.vlt"), "First");
    Mailbox second(PathOf("second.vlt"), "Second");
    first.AddMany(3, "one");
    second.AddMany(3, "two");
    SetVariable("GoogleDebug", "1");
    Configure(0, first.Path());
    Configure(1, second.Path());
    bool reset = false;
    pavex::SetLogObserver([&](const pavex::LogEntry& entry) {
        log_.push_back(entry);
        if (entry.id == kLogPassCounters && !reset) {
            reset = true;
            StopAndReset();
        }
        return true;
    });
    StopAt(10 * kMinute + 900);
    IndexingLoop();
    EXPECT_EQ(Visited(), (Names{"first.vlt", "second.vlt", "first.vlt"}));
    EXPECT_EQ(Logged(kLogProgressReset), 1);
    EXPECT_EQ(Logged(kLogPassCounters), 3);  // all three times there was everything to do
    EXPECT_EQ(Subjects().size(), 6U);
}

TEST_F(Loop, AnInterruptedCycleContinuesWithTheNextDatabase)
{
    ConfigureEmpty({0, 1, 2});
    pavex::SetLogObserver([&](const pavex::LogEntry& entry) {
        log_.push_back(entry);
        if (entry.id == kLogOpened && Visited().size() == 1)
            bStopAndReset = 1;
        return true;
    });
    StopAt(10 * kMinute + 500);
    IndexingLoop();
    EXPECT_EQ(Visited(), (Names{"db0.vlt", "db1.vlt", "db2.vlt", "db0.vlt"}));
}

TEST_F(Loop, TheIdleDelayShortensTheNextWaitOnly)
{
    ConfigureEmpty({0});
    std::vector<uint64_t> visits;
    pavex::SetLogObserver([&](const pavex::LogEntry& entry) {
        if (entry.id == kLogOpened) {
            visits.push_back(Now());
            if (visits.size() == 1)
                clock_.At(Now(), [] {});
        }
        if (entry.id == kLogNothingModified && visits.size() == 1)
            dwIdleDelay = 7000;
        return true;
    });
    StopAt(15 * kMinute);
    IndexingLoop();
    ASSERT_GE(visits.size(), 3U);
    EXPECT_EQ(visits[1] - visits[0], 7000U);
    EXPECT_EQ(visits[2] - visits[1], 5 * kMinute);
}

TEST_F(Loop, AWaitOfNothingReturnsAtOnce)
{
    SleepForMilli(0, true);
    EXPECT_EQ(clock_.Delays(), 0U);
}

TEST_F(Loop, AWaitIsNeverLongerThanItsCap)
{
    SleepForMilli(0xFFFFFFFF, true);
    EXPECT_EQ(Now(), 6000000U);
}

TEST_F(Loop, AShortWaitInAPassTakesNoWholeSecond)
{
    SleepForMilli(100, true);
    EXPECT_EQ(Now(), 100U);
}

TEST_F(Loop, AWaitInAPassEndsAtAResetAndNotAtAStartSoon)
{
    clock_.At(2500, [] { bStartSoon = 1; });
    clock_.At(4500, [] { bStopAndReset = 1; });
    SleepForMilli(60000, true);
    EXPECT_EQ(Now(), 5000U);
}

TEST_F(Loop, AWaitBetweenCyclesDoesNotEndAtAReset)
{
    clock_.At(500, [] { bStopAndReset = 1; });
    SleepForMilli(4000, false);
    EXPECT_EQ(Now(), 4000U);
}

TEST_F(Loop, EveryPollIsLoggedWhenDebuggingLots)
{
    SetVariable("GoogleDebugLots", "1");
    SleepForMilli(3000, true);
    EXPECT_EQ(LogIds(), (std::vector<unsigned>{kLogPoll, kLogPoll, kLogPoll}));
}

TEST_F(Loop, YieldsAreSkippedWhileARequestIsPending)
{
    EnsureIdle();
    EXPECT_EQ(clock_.Preempts(), 1U);
    bStartSoon = 1;
    EnsureIdle();
    bStartSoon = 0;
    bStopAndReset = 1;
    EnsureIdle();
    bStopAndReset = 0;
    bShutDownThread = 1;
    EnsureIdle();
    EXPECT_EQ(clock_.Preempts(), 1U);
}

TEST(LoopAtTheTimersWrap, WaitsAndHistoryChecksGoOnAsBefore)
{
    // Its own clock: the 32-bit timer wraps two and a half minutes after the start.
    class Wrapping : public AddInTest {
        void TestBody() override {}

    public:
        void Run()
        {
            constexpr uint64_t kWrap = 0x100000000;
            pavex::VirtualClock clock(1'164'067'200ULL * 100, kWrap - 150000);
            pavex::SetClock(&clock);
            SetVariable("GoogleDebug", "1");
            Mailbox(PathOf("mail.vlt"), "Mail");
            Mailbox(PathOf("bookmark.vlt"), "History");
            Configure(0, PathOf("mail.vlt"));
            Configure(15, PathOf("bookmark.vlt"));
            dwHistoryCount = OSGetSystemTimer();
            clock.At(kWrap - 150000 + 300500, [] { bShutDownThread = 1; });
            IndexingLoop();
            EXPECT_EQ(LoggedPaths(kLogOpened), (Names{"bookmark.vlt", "bookmark.vlt", "bookmark.vlt", "bookmark.vlt",
                                                      "mail.vlt", "bookmark.vlt"}));
            pavex::SetClock(&clock_);
        }
    };
    Wrapping().Run();
}

// Thirty days of a user's life: what a day brings is decided by its number.
TEST_F(Loop, ThirtyDaysWithAChangingMailboxEndWithExactlyItsNotesIndexed)
{
    Mailbox mail(PathOf("mail.vlt"), "Mail");
    Mailbox history(PathOf("bookmark.vlt"), "History");
    Configure(0, mail.Path());
    Configure(15, history.Path());
    SetVariable("GoogleWaitTime", "0");
    std::map<uint32_t, std::string> expected;
    for (uint64_t day = 0; day < 30; ++day) {
        const uint64_t morning = day * 24 * kHour + 8 * kHour + 137;
        clock_.At(morning, [&, day] {
            const std::string subject = "day " + std::to_string(day);
            expected[mail.Add(subject)] = subject;
        });
        if (day % 3 == 2)
            clock_.At(morning + kHour, [&] {
                const uint32_t id = expected.begin()->first;
                mail.Delete(id);
                expected.erase(id);
            });
        if (day % 4 == 1)
            clock_.At(morning + 2 * kHour, [&, day] {
                const auto last = std::prev(expected.end());
                last->second = "changed on day " + std::to_string(day);
                mail.Change(last->first, last->second);
            });
        if (day % 7 == 3)
            clock_.At(morning + 3 * kHour, [this] { RunOnBattery(true); });
        if (day % 7 == 4)
            clock_.At(morning + 3 * kHour, [this] { RunOnBattery(false); });
        if (day % 10 == 5)
            clock_.At(morning + 4 * kHour, [] {
                StopAndReset();
                StartSoon();
            });
    }
    StopAt(30 * 24 * kHour);
    IndexingLoop();
    std::vector<std::string> subjects;
    for (const auto& [id, subject] : expected)
        subjects.push_back(subject);
    std::sort(subjects.begin(), subjects.end());
    EXPECT_EQ(Subjects(), subjects);
}

}  // namespace
