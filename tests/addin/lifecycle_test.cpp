// tests/addin/lifecycle_test.cpp: start, stop and steering of the indexing thread.
#include "addin/lifecycle.h"

#include <cstring>

#include "settings/progress.h"
#include "strings/string_ids.h"
#include "tests/addin/addin_fixture.h"
#include "tests/support/fault_plan.h"

namespace {

using Lifecycle = AddInTest;

TEST_F(Lifecycle, AThreadThatIsToEndAlreadyEndsWithoutALoop)
{
    bShutDownThread = 1;
    ThreadProc(nullptr);
    EXPECT_EQ(LogIds(), std::vector<unsigned>{kLogThreadNotStarted});
}

TEST_F(Lifecycle, AThreadWhoseInitialisationFailsSaysSoAndEnds)
{
    const NamedFault fault("PavexInitThread", 1234);
    ThreadProc(nullptr);
    ASSERT_EQ(log_.size(), 1U);
    EXPECT_EQ(log_[0].id, kLogThreadNotStarted);
    EXPECT_EQ(log_[0].status, 1234);
}

TEST_F(Lifecycle, TheThreadLogsItsStartAndItsEnd)
{
    clock_.At(clock_.TimerMilliseconds() + 2500, [] { PavexDesktopTerm(); });
    ThreadProc(nullptr);
    EXPECT_EQ(LogIds(), (std::vector<unsigned>{kLogThreadStarted, kLogThreadEnded}));
}

TEST_F(Lifecycle, TheRequestToEndIsLoggedWhenDebugging)
{
    SetVariable("GoogleDebug", "1");
    EXPECT_TRUE(PavexDesktopTerm());
    EXPECT_EQ(LogIds(), std::vector<unsigned>{kLogStopRequested});
}

TEST_F(Lifecycle, TheFirstHistoryPassWaitsAMinuteFromTheStart)
{
    clock_.Advance(123456);
    const NamedFault noThread("OSCreateThread");  // the start's effects without the thread
    EXPECT_FALSE(PavexDesktopIndex());
    EXPECT_EQ(dwHistoryCount, static_cast<uint32_t>(clock_.TimerMilliseconds()));
}

TEST_F(Lifecycle, AStartBeginsWithoutRequestsStatisticsOrLoggedFailures)
{
    bShutDownThread = bStopAndReset = bStartSoon = 1;
    dwIdleDelay = 5;
    for (std::atomic<uint32_t>* counter :
         {&GlobalContext.indexed, &GlobalContext.skipped, &GlobalContext.errors, &GlobalContext.blankFailures,
          &GlobalContext.deleted, &GlobalContext.passFlag, &GlobalContext.total, &GlobalContext.processed,
          &GlobalContext.database})
        *counter = 7;
    GlobalContext.resumed = GlobalContext.upToDate = GlobalContext.historyActive = GlobalContext.inProgress = 1;
    bLogged[0] = bLogged[14] = bLoggedHistory = 1;

    const NamedFault noThread("OSCreateThread");
    EXPECT_FALSE(PavexDesktopIndex());

    EXPECT_EQ(bShutDownThread, 0);
    EXPECT_EQ(bStopAndReset, 0);
    EXPECT_EQ(bStartSoon, 0);
    EXPECT_EQ(dwIdleDelay, 0U);
    const std::string zeros(sizeof(PLUGINCONTEXT), '\0');
    EXPECT_EQ(std::memcmp(&GlobalContext, zeros.data(), zeros.size()), 0);
    EXPECT_EQ(bLogged[0], 0);
    EXPECT_EQ(bLogged[14], 0);
    EXPECT_EQ(bLoggedHistory, 0);
}

TEST_F(Lifecycle, TheThreadIsMadeOnceAProcess)
{
    EXPECT_TRUE(PavexDesktopIndex());
    bStartSoon = 1;
    EXPECT_TRUE(PavexDesktopIndex());
    EXPECT_EQ(pavex::ThreadsMade(), 1);
    PavexDesktopTerm();
    pavex::JoinThreads();
    EXPECT_TRUE(PavexDesktopIndex());
    EXPECT_EQ(pavex::ThreadsMade(), 0);
    EXPECT_EQ(bShutDownThread, 1);  // nothing begins anew
}

TEST_F(Lifecycle, TheRequestToEndIsNotLoggedOtherwise)
{
    EXPECT_TRUE(PavexDesktopTerm());
    EXPECT_EQ(bShutDownThread, 1);
    EXPECT_TRUE(log_.empty());
}

TEST_F(Lifecycle, StopAndResetForgetsAllProgressAndLetsFailuresBeLoggedAgain)
{
    Configure(3, PathOf("mail.vlt"));
    TIMEDATE since;
    OSCurrentTIMEDATE(&since);
    for (const int slot : {0, 3, 14, 15})
        SetDbTimestamp(slot, &since, &since, 7, 1, 2);
    dwIdleDelay = 5;
    bLogged[3] = 1;
    bLoggedHistory = 1;

    StopAndReset();

    for (const int slot : {0, 3, 14, 15}) {
        TIMEDATE stored;
        unsigned note = 0;
        EXPECT_FALSE(GetDbTimestamp(slot, &stored)) << slot;
        EXPECT_FALSE(GetDbRecovery(slot, &stored, &note)) << slot;
    }
    EXPECT_EQ(Variable("GDSTimestamp3"), "");
    EXPECT_EQ(bStopAndReset, 1);
    EXPECT_EQ(dwIdleDelay, 0U);
    EXPECT_EQ(bLogged[3], 0);
    EXPECT_EQ(bLoggedHistory, 0);
}

TEST_F(Lifecycle, StartSoonIsOneFlag)
{
    StartSoon();
    EXPECT_EQ(bStartSoon, 1);
    EXPECT_EQ(bStopAndReset, 0);
}

TEST_F(Lifecycle, TheStatisticsAreCopiedWhole)
{
    GlobalContext.indexed = 1;
    GlobalContext.skipped = 2;
    GlobalContext.errors = 3;
    GlobalContext.blankFailures = 4;
    GlobalContext.deleted = 5;
    GlobalContext.resumed = 6;
    GlobalContext.upToDate = 7;
    GlobalContext.historyActive = 8;
    GlobalContext.inProgress = 9;
    GlobalContext.passFlag = 10;
    GlobalContext.total = 11;
    GlobalContext.processed = 12;
    GlobalContext.database = 13;
    PLUGINCONTEXT copy = {};
    CopyPluginStatistics(&copy);
    EXPECT_EQ(std::memcmp(&copy, &GlobalContext, sizeof copy), 0);
}

}  // namespace
