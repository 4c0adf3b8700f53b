// tests/addin/pass_test.cpp: one pass over one slot, and what it records.
#include "addin/pass.h"

#include "addin/lifecycle.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "strings/string_ids.h"
#include "tests/addin/addin_fixture.h"
#include "tests/support/fault_plan.h"

namespace {

class Pass : public AddInTest {
protected:
    Pass() : mail_(PathOf("mail.vlt"), "Mail")
    {
        Configure(0, mail_.Path());
        SetVariable("GoogleWaitTime", "0");
    }

    // Ends the pass by message 3's flag when the given note of the table is reached.
    void StopBefore(uint32_t processed)
    {
        SetVariable("GoogleDebugLots", "1");
        pavex::SetLogObserver([this, processed](const pavex::LogEntry& entry) {
            log_.push_back(entry);
            if (entry.id == kLogNoteUrl && GlobalContext.processed == processed - 1)
                bShutDownThread = 1;
            return true;
        });
    }
    void GoOn()
    {
        bShutDownThread = 0;
        pavex::SetLogObserver(nullptr);
    }

    Mailbox mail_;
};

TEST_F(Pass, IndexesEveryNoteOnceAndThenFindsNothingModified)
{
    SetVariable("GoogleDebug", "1");
    mail_.AddMany(3, "note");
    IndexFile(0, false);
    EXPECT_EQ(Subjects(), (std::vector<std::string>{"note 1", "note 2", "note 3"}));
    EXPECT_EQ(GlobalContext.indexed, 3U);
    EXPECT_EQ(GlobalContext.upToDate, 1);
    EXPECT_EQ(GlobalContext.inProgress, 0);

    log_.clear();
    IndexFile(0, false);
    EXPECT_EQ(Logged(kLogNothingModified), 1);
    EXPECT_EQ(GlobalContext.indexed, 3U);
}

TEST_F(Pass, NothingModifiedMovesTheStoredTimeWithoutARecoveryRecord)
{
    mail_.AddMany(1, "note");
    IndexFile(0, false);
    TIMEDATE before;
    ASSERT_TRUE(GetDbTimestamp(0, &before));
    pavex::Note form;  // a design change moves the database's stamp, and is no document
    form.noteClass = pavex::kClassForm;
    form.items = {pavex::TextItem("$Title", "Recipe")};
    ASSERT_EQ(mail_.Db().Put(&form), 0);
    TIMEDATE until;
    IndexFile(0, false);
    unsigned note = 0;
    EXPECT_FALSE(GetDbRecovery(0, &until, &note));
    TIMEDATE stored;
    ASSERT_TRUE(GetDbTimestamp(0, &stored));
    EXPECT_GT(TimeDateCollate(&stored, &before), 0);
    EXPECT_EQ(GlobalContext.upToDate, 1);
}

TEST_F(Pass, OneChangedNoteRewritesOneMetafile)
{
    const uint32_t id = mail_.Add("before");
    mail_.Add("other");
    IndexFile(0, false);
    GlobalContext.indexed = 0;
    mail_.Change(id, "after");
    IndexFile(0, false);
    EXPECT_EQ(GlobalContext.indexed, 1U);
    EXPECT_EQ(Subjects(), (std::vector<std::string>{"after", "other"}));
}

TEST_F(Pass, OneDeletedNoteRemovesOneMetafile)
{
    const uint32_t id = mail_.Add("goes");
    mail_.Add("stays");
    IndexFile(0, false);
    mail_.Delete(id);
    IndexFile(0, false);
    EXPECT_EQ(GlobalContext.deleted, 1U);
    EXPECT_EQ(Subjects(), std::vector<std::string>{"stays"});
}

TEST_F(Pass, AStopAfterThirtyOfAHundredNotesIsRecordedAndResumed)
{
    mail_.AddMany(100, "note");
    StopBefore(30);
    IndexFile(0, false);
    GoOn();
    EXPECT_EQ(Subjects().size(), 29U);
    EXPECT_EQ(GlobalContext.resumed, 1);
    TIMEDATE since;
    EXPECT_FALSE(GetDbTimestamp(0, &since) && !IsTimeDateClear(&since));
    TIMEDATE until;
    unsigned resumeNote = 0;
    unsigned processed = 0;
    unsigned total = 0;
    ASSERT_TRUE(GetDbRecovery(0, &until, &resumeNote));
    ASSERT_TRUE(GetDbRecoveryProgress(0, &processed, &total));
    EXPECT_EQ(resumeNote, 30U);
    EXPECT_EQ(processed, 30U);
    EXPECT_EQ(total, 100U);

    GlobalContext.indexed = 0;
    IndexFile(0, false);
    EXPECT_EQ(GlobalContext.indexed, 71U);  // notes below the resume note are not opened again
    EXPECT_EQ(Subjects().size(), 100U);
    EXPECT_EQ(GlobalContext.resumed, 0);
    EXPECT_FALSE(GetDbRecovery(0, &until, &resumeNote));
}

TEST_F(Pass, ANoteBelowTheResumePointThatChangedMeanwhileIsIndexedByThePassAfter)
{
    mail_.AddMany(10, "note");
    StopBefore(6);
    IndexFile(0, false);
    GoOn();
    mail_.Change(2, "changed while the pass was interrupted");
    IndexFile(0, false);
    IndexFile(0, false);
    const std::vector<std::string> subjects = Subjects();
    EXPECT_EQ(subjects.size(), 10U);
    EXPECT_EQ(std::count(subjects.begin(), subjects.end(), "changed while the pass was interrupted"), 1);
}

TEST_F(Pass, SwitchingIndexingOffInterruptsThePassAndKeepsItsPlace)
{
    mail_.AddMany(10, "note");
    SetVariable("GoogleDebugLots", "1");
    pavex::SetLogObserver([this](const pavex::LogEntry& entry) {
        if (entry.id == kLogNoteUrl && GlobalContext.processed == 4)
            SetVariable("GDSIndexEnabled", "0");
        return true;
    });
    IndexFile(0, false);
    TIMEDATE until;
    unsigned resumeNote = 0;
    ASSERT_TRUE(GetDbRecovery(0, &until, &resumeNote));
    EXPECT_EQ(resumeNote, 5U);
}

TEST_F(Pass, AResetInterruptsThePassWithoutARecoveryRecord)
{
    mail_.AddMany(10, "note");
    SetVariable("GoogleDebugLots", "1");
    pavex::SetLogObserver([](const pavex::LogEntry& entry) {
        if (entry.id == kLogNoteUrl && GlobalContext.processed == 4)
            StopAndReset();
        return true;
    });
    IndexFile(0, false);
    TIMEDATE until;
    unsigned resumeNote = 0;
    EXPECT_FALSE(GetDbRecovery(0, &until, &resumeNote));
    EXPECT_EQ(GlobalContext.resumed, 0);
    EXPECT_EQ(GlobalContext.upToDate, 0);
}

// As the settings dialog does when one database is removed and another added.
void GiveSlotTo(const Mailbox& other)
{
    SetDbPath(0, nullptr);
    SetDbTimestamp(0, nullptr, nullptr, 0, 0, 0);
    SetDbPath(0, other.Path().c_str());
}

TEST_F(Pass, ASlotGivenToAnotherDatabaseMeanwhileKeepsThatOnesProgress)
{
    mail_.AddMany(10, "note");
    Mailbox other(PathOf("other.vlt"), "Other");
    SetVariable("GoogleDebugLots", "1");
    pavex::SetLogObserver([&other](const pavex::LogEntry& entry) {
        if (entry.id == kLogNoteUrl && GlobalContext.processed == 4)
            GiveSlotTo(other);
        return true;
    });
    IndexFile(0, false);
    TIMEDATE since;
    EXPECT_FALSE(GetDbTimestamp(0, &since));
}

TEST_F(Pass, ASlotGivenAwayBeforeNothingWasFoundModifiedKeepsTheOtherDatabasesProgress)
{
    SetVariable("GoogleDebug", "1");
    mail_.AddMany(1, "note");
    IndexFile(0, false);
    Mailbox other(PathOf("other.vlt"), "Other");
    pavex::SetLogObserver([&other](const pavex::LogEntry& entry) {
        if (entry.id == kLogOpened)
            GiveSlotTo(other);
        return true;
    });
    IndexFile(0, false);
    TIMEDATE since;
    EXPECT_FALSE(GetDbTimestamp(0, &since));
}

TEST_F(Pass, AResetThatTheClientsEndFollowsIsNotLost)
{
    SetVariable("GoogleDebugLots", "1");
    mail_.AddMany(3, "note");
    IndexFile(0, false);
    mail_.AddMany(10, "more");
    pavex::SetLogObserver([](const pavex::LogEntry& entry) {
        if (entry.id == kLogNoteUrl && GlobalContext.processed == 4) {
            StopAndReset();
            bShutDownThread = 1;
        }
        return true;
    });
    IndexFile(0, false);
    EXPECT_EQ(Variable("GDSTimestamp"), "");
}

TEST_F(Pass, WhatAnotherProcessChangedInTheIniFileIsTakenOver)
{
    mail_.AddMany(3, "note");
    IndexFile(0, false);
    SetVariable("GDSTimestamp", "");  // another process asked for everything to be indexed again
    mail_.AddMany(1, "new");
    IndexFile(0, false);
    EXPECT_EQ(Variable("GDSTimestamp"), "");
    GlobalContext.indexed = 0;
    IndexFile(0, false);
    EXPECT_EQ(GlobalContext.indexed, 4U);
}

TEST_F(Pass, AResetByAnotherProcessDuringTheFirstPassIsNotOverwritten)
{
    mail_.AddMany(3, "note");
    SetVariable("GoogleDebugLots", "1");
    pavex::SetLogObserver([](const pavex::LogEntry& entry) {
        if (entry.id == kLogNoteUrl)
            pavex::SetVariable("GDSTimestamp", "");
        return true;
    });
    IndexFile(0, false);
    pavex::SetLogObserver(nullptr);
    EXPECT_EQ(Variable("GDSTimestamp"), "");
    GlobalContext.indexed = 0;
    IndexFile(0, false);
    EXPECT_EQ(GlobalContext.indexed, 3U);
}

TEST_F(Pass, AResetByAnotherProcessBringsItsSwitchesAlong)
{
    mail_.AddMany(1, "note");
    IndexFile(0, false);
    ASSERT_FALSE(IsIndexingDrafts());
    ASSERT_TRUE(IsIndexingHistory());
    SetVariable("GDSIndexDrafts", "1");
    SetVariable("GDSNoIndexHistory", "1");
    SetVariable("GDSTimestamp", "");
    IndexFile(0, false);
    EXPECT_TRUE(IsIndexingDrafts());
    EXPECT_FALSE(IsIndexingHistory());
    SetVariable("GDSIndexDrafts", "0");
    SetVariable("GDSTimestamp", "");
    IndexFile(0, false);
    SetVariable("GDSTimestamp", "");
    IndexFile(0, false);
    EXPECT_FALSE(IsIndexingDrafts());
}

TEST_F(Pass, AnEnumerationThatFailedKeepsTheOldTime)
{
    mail_.AddMany(3, "note");
    IndexFile(0, false);
    const std::string before = Variable("GDSTimestamp");
    mail_.AddMany(1, "new");
    {
        const NamedFault fault("IDEnumerate", 1234);
        IndexFile(0, false);
    }
    EXPECT_EQ(Variable("GDSTimestamp"), before);
    EXPECT_EQ(GlobalContext.upToDate, 0);
    IndexFile(0, false);
    EXPECT_EQ(Subjects().size(), 4U);
}

TEST_F(Pass, ASlotThatLosesItsPathEndsThePass)
{
    mail_.AddMany(10, "note");
    SetVariable("GoogleDebugLots", "1");
    pavex::SetLogObserver([](const pavex::LogEntry& entry) {
        if (entry.id == kLogNoteUrl && GlobalContext.processed == 4)
            SetDbPath(0, nullptr);
        return true;
    });
    IndexFile(0, false);
    EXPECT_EQ(Subjects().size(), 4U);
    EXPECT_EQ(Variable("GDSTimestamp"), "0");  // begun, and nothing recorded of it
}

TEST_F(Pass, ADatabaseThatCannotBeOpenedIsLoggedOnceUntilTheLogIsReset)
{
    Configure(1, PathOf("none.vlt"));
    IndexFile(1, false);
    IndexFile(1, false);
    EXPECT_EQ(LoggedPaths(kLogCannotOpen), std::vector<std::string>{"none.vlt"});
    EXPECT_EQ(log_[0].status, 259);
    ResetLog();
    IndexFile(1, false);
    EXPECT_EQ(Logged(kLogCannotOpen), 2);
}

TEST_F(Pass, WithDebuggingOnEveryFailureToOpenIsLogged)
{
    SetVariable("GoogleDebug", "1");
    Configure(1, PathOf("none.vlt"));
    IndexFile(1, false);
    IndexFile(1, false);
    EXPECT_EQ(Logged(kLogCannotOpen), 2);
}

TEST_F(Pass, AModifiedTimeThatCannotBeReadIsLoggedOnceAndNothingPassed)
{
    mail_.AddMany(1, "note");
    const NamedFault fault("VLTDbModifiedTime", 1234);
    IndexFile(0, false);
    IndexFile(0, false);
    EXPECT_EQ(LoggedPaths(kLogNoModifiedTime), std::vector<std::string>{"mail.vlt"});
    EXPECT_TRUE(Subjects().empty());
}

TEST_F(Pass, ATableThatCannotBeHadIsLoggedAndTheOldTimeStays)
{
    mail_.AddMany(1, "note");
    const NamedFault fault("VLTDbGetModifiedNoteTable", 1234);
    IndexFile(0, false);
    ASSERT_EQ(Logged(kLogNotListed), 1);
    EXPECT_EQ(log_.back().status, 1234);
    EXPECT_EQ(Variable("GDSTimestamp"), "(absent)");
}

TEST_F(Pass, WithoutAnUnreadTableThePassGoesOn)
{
    mail_.AddMany(2, "note");
    const NamedFault fault("VLTDbGetUnreadNoteTable");
    IndexFile(0, false);
    EXPECT_EQ(Subjects().size(), 2U);
}

TEST_F(Pass, TellsHowManyNotesItIndexedWhenItIndexedAny)
{
    mail_.AddMany(2, "note");
    IndexFile(0, false);
    IndexFile(0, false);
    ASSERT_EQ(log_.size(), 1U);
    EXPECT_EQ(log_[0].id, kLogPassIndexed);
    EXPECT_EQ(std::get<int64_t>(log_[0].arguments.at(1)), 2);
    EXPECT_EQ(log_[0].status, 0);
}

TEST_F(Pass, AnInterruptedPassTellsItsCountWithoutAStatus)
{
    mail_.AddMany(9, "note");
    StopBefore(5);
    SetVariable("GoogleDebugLots", "0");
    clock_.At(0, [] {});
    SetVariable("GoogleWaitTime", "60");
    clock_.At(clock_.TimerMilliseconds() + 200, [] { bShutDownThread = 1; });
    IndexFile(0, false);
    ASSERT_FALSE(log_.empty());
    EXPECT_EQ(log_.back().id, kLogPassIndexed);
    EXPECT_EQ(log_.back().status, 0);
}

TEST_F(Pass, AHistoryPassLeavesTheRunStatisticsAlone)
{
    Mailbox history(PathOf("bookmark.vlt"), "History");
    history.Add("a message in the history database");
    Configure(15, history.Path());
    GlobalContext.indexed = 4;
    GlobalContext.processed = 7;
    GlobalContext.total = 9;
    IndexFile(15, true);
    EXPECT_EQ(GlobalContext.indexed, 4U);
    EXPECT_EQ(GlobalContext.skipped, 0U);
    EXPECT_EQ(GlobalContext.processed, 7U);
    EXPECT_EQ(GlobalContext.total, 9U);
    EXPECT_EQ(GlobalContext.historyActive, 0);
    EXPECT_NE(Variable("GDSTimestamp15"), "(absent)");
    EXPECT_TRUE(Subjects().empty());  // only history entries are indexed there
}

TEST_F(Pass, AnUnconfiguredSlotCostsNothing)
{
    IndexFile(9, false);
    EXPECT_TRUE(log_.empty());
    EXPECT_EQ(clock_.Preempts(), 0U);
}

TEST_F(Pass, ARemotePathIsNotOpened)
{
    Configure(2, "//server/mail.vlt");
    IndexFile(2, false);
    ASSERT_EQ(Logged(kLogCannotOpen), 1);
    EXPECT_EQ(log_[0].status, 788);
}

}  // namespace
