// tests/addin/pass_statistics_test.cpp: what the status display can read while a pass runs and when it has ended,
// and where a pass gives way to the user.
#include "addin/index_context.h"
#include "addin/lifecycle.h"
#include "addin/pass.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "strings/string_ids.h"
#include "tests/addin/addin_fixture.h"
#include "tests/addin/call_record.h"
#include "tests/support/fault_plan.h"

namespace {

// The statistics of a pass, without the counters of results.
struct Seen {
    uint32_t database;
    uint32_t processed;
    uint32_t total;
    int resumed;
    int upToDate;
    int inProgress;
    int historyActive;
    bool operator==(const Seen&) const = default;
};

void PrintTo(const Seen& seen, std::ostream* out)
{
    *out << "slot " << seen.database << ", " << seen.processed << "/" << seen.total << ", resumed " << seen.resumed
         << ", up to date " << seen.upToDate << ", in progress " << seen.inProgress << ", history "
         << seen.historyActive;
}

Seen Now()
{
    return {GlobalContext.database, GlobalContext.processed,  GlobalContext.total,        GlobalContext.resumed,
            GlobalContext.upToDate, GlobalContext.inProgress, GlobalContext.historyActive};
}

// What another pass may have left.
void LeaveOtherStatistics()
{
    GlobalContext.database = 7;
    GlobalContext.processed = 40;
    GlobalContext.total = 50;
    GlobalContext.resumed = GlobalContext.upToDate = GlobalContext.inProgress = GlobalContext.historyActive = 1;
}

class PassStatistics : public AddInTest {
protected:
    PassStatistics() : mail_(PathOf("mail.vlt"), "Mail")
    {
        Configure(3, mail_.Path());
        SetVariable("GoogleWaitTime", "0");
        LeaveOtherStatistics();
    }
    // One pass; what was seen before each note.
    std::vector<Seen> Pass()
    {
        std::vector<Seen> seen;
        calls_.beforeNote = [&seen](const INDEXCONTEXT&) { seen.push_back(Now()); };
        IndexFile(3, false);
        calls_.beforeNote = nullptr;
        return seen;
    }

    Mailbox mail_;
    CallRecord calls_;
};

TEST_F(PassStatistics, TellHowFarAPassIsAndThatItIsComplete)
{
    mail_.AddMany(2, "note");
    EXPECT_EQ(Pass(), (std::vector<Seen>{{3, 1, 2, 0, 0, 1, 0}, {3, 2, 2, 0, 0, 1, 0}}));
    EXPECT_EQ(Now(), (Seen{3, 2, 2, 0, 1, 0, 0}));
}

TEST_F(PassStatistics, TellThatNothingWasModified)
{
    mail_.AddMany(2, "note");
    Pass();
    LeaveOtherStatistics();
    EXPECT_TRUE(Pass().empty());
    EXPECT_EQ(Now(), (Seen{3, 0, 0, 0, 1, 0, 0}));
}

TEST_F(PassStatistics, TellThatAPassWasInterruptedAndIsResumed)
{
    mail_.AddMany(3, "note");
    calls_.beforeNote = [](const INDEXCONTEXT&) { bShutDownThread = 1; };
    IndexFile(3, false);
    bShutDownThread = 0;
    EXPECT_EQ(Now(), (Seen{3, 2, 3, 1, 0, 0, 0}));
    EXPECT_EQ(Pass(), (std::vector<Seen>{{3, 2, 3, 1, 0, 1, 0}, {3, 3, 3, 1, 0, 1, 0}}));
    EXPECT_EQ(Now(), (Seen{3, 3, 3, 0, 1, 0, 0}));
}

TEST_F(PassStatistics, TellThatAnEnumerationFailed)
{
    mail_.AddMany(3, "note");
    const NamedFault fault("IDEnumerate", 1234);
    Pass();
    EXPECT_EQ(Now(), (Seen{3, 0, 3, 0, 0, 0, 0}));
}

TEST_F(PassStatistics, AreClearedForADatabaseWhoseTableCannotBeHad)
{
    mail_.AddMany(3, "note");
    const NamedFault fault("VLTDbGetModifiedNoteTable", 1234);
    Pass();
    EXPECT_EQ(Now(), (Seen{3, 0, 0, 0, 1, 1, 0}));  // whether a pass runs is not touched
    EXPECT_EQ(LogIds(), std::vector<unsigned>{kLogNotListed});
}

TEST_F(PassStatistics, OfADatabaseThatCannotBeOpenedAreNone)
{
    const NamedFault fault("VLTDbOpen", 515);
    Pass();
    EXPECT_EQ(Now(), (Seen{7, 40, 50, 1, 1, 1, 1}));
}

TEST_F(PassStatistics, AHistoryPassTouchesNothingButItsOwnMark)
{
    SetDbPath(7, "/elsewhere.vlt");
    Mailbox history(PathOf("bookmark.vlt"), "History");
    history.Add("a message in the history database");
    Configure(15, history.Path());
    SetDbPath(15, history.Path().c_str());
    for (const char* what : {"an entry", "nothing modified"}) {
        LeaveOtherStatistics();
        IndexFile(15, true);
        EXPECT_EQ(Now(), (Seen{7, 40, 50, 1, 1, 1, 0})) << what;
    }
    EXPECT_NE(Variable("GDSTimestamp15"), "(absent)");
}

TEST_F(PassStatistics, APassTakesTheIdleDelayBack)
{
    mail_.Add("note");
    dwIdleDelay = 7000;
    Pass();
    EXPECT_EQ(dwIdleDelay, 0U);
}

TEST_F(PassStatistics, OfASuccessTheLogTellsTheCountAloneUnlessDebugging)
{
    mail_.AddMany(2, "note");
    Pass();
    EXPECT_EQ(LogIds(), std::vector<unsigned>{kLogPassIndexed});
    Pass();
    EXPECT_EQ(LogIds(), std::vector<unsigned>{kLogPassIndexed});  // nothing modified: nothing to tell
    bIniDebug = 1;
    log_.clear();
    Pass();
    EXPECT_EQ(LogIds(), (std::vector<unsigned>{kLogOpened, kLogListed, kLogNothingModified}));
}

using GivingWay = PassStatistics;

TEST_F(GivingWay, APassYieldsBeforeItOpensItsDatabaseAndBeforeItListsTheNotes)
{
    mail_.Add("note");
    Pass();
    calls_.pauses.clear();
    Pass();  // nothing modified
    EXPECT_EQ(calls_.pauses, (std::vector<std::string>{"preempt at -1", "preempt at -1"}));
}

TEST_F(GivingWay, ADeletionIsPrecededByAYield)
{
    const uint32_t id = mail_.Add("note");
    INDEXCONTEXT context = {};
    ASSERT_EQ(VLTDbOpen(mail_.Path().c_str(), &context.database), 0);
    GlobalContext.database = 3;
    EXPECT_EQ(EnumMailTable(&context, id | 0x80000000), 0);
    EXPECT_EQ(calls_.pauses, std::vector<std::string>{"preempt at -1"});
    context.resumeNote = 9;
    EXPECT_EQ(EnumMailTable(&context, 8), 0);  // done before: no yield
    EXPECT_EQ(calls_.pauses.size(), 1U);
    EXPECT_EQ(VLTDbClose(context.database), 0);
}

TEST_F(GivingWay, NoPauseFollowsANoteWhenTheClientIsEnding)
{
    SetVariable("GoogleWaitTime", "60");
    mail_.AddMany(2, "note");
    calls_.beforeNote = [](const INDEXCONTEXT&) { pavex::RequestTermination(); };
    IndexFile(3, false);
    pavex::RequestTermination(false);
    EXPECT_EQ(clock_.TimerMilliseconds(), 0U);
    EXPECT_EQ(clock_.Delays(), 0U);
    EXPECT_EQ(Subjects().size(), 1U);
}

TEST_F(GivingWay, NoPauseFollowsANoteThatWasNotIndexed)
{
    SetVariable("GoogleWaitTime", "60");
    SetGoogleSupport(kNoteKindTask, false);
    mail_.AddPlain("a task", "Task");
    IndexFile(3, false);
    EXPECT_EQ(clock_.Delays(), 0U);
}

}  // namespace
