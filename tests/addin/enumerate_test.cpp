// tests/addin/enumerate_test.cpp: one entry of the table: order of checks, counters, pauses.
#include "addin/index_context.h"
#include "addin/lifecycle.h"
#include "addin/pass.h"
#include "settings/settings.h"
#include "strings/string_ids.h"
#include "tests/addin/addin_fixture.h"
#include "tests/support/fault_plan.h"

namespace {

class Enumerate : public AddInTest {
protected:
    Enumerate() : mail_(PathOf("mail.vlt"), "Mail")
    {
        Configure(0, mail_.Path());
        SetVariable("GoogleWaitTime", "0");
    }
    void Open() { EXPECT_EQ(VLTDbOpen(mail_.Path().c_str(), &context_.database), 0); }
    ~Enumerate() override
    {
        if (context_.database != 0)
            VLTDbClose(context_.database);
    }

    Mailbox mail_;
    INDEXCONTEXT context_ = {};
};

constexpr NOTEID kDeletion = 0x80000000;

TEST_F(Enumerate, CountsAnIndexedNoteInThePassAndInTheRunStatistics)
{
    const uint32_t id = mail_.Add("note");
    Open();
    EXPECT_EQ(EnumMailTable(&context_, id), 0);
    EXPECT_EQ(context_.currentNote, id);
    EXPECT_EQ(context_.indexed, 1U);
    EXPECT_EQ(GlobalContext.indexed, 1U);
    EXPECT_EQ(GlobalContext.processed, 1U);
}

TEST_F(Enumerate, ANoteBelowTheResumePointIsCountedAsVisitedAndNotOpened)
{
    context_.resumeNote = 5;
    const NamedFault mustNotOpen("VLTNoteOpen");
    EXPECT_EQ(EnumMailTable(&context_, 4), 0);
    EXPECT_EQ(GlobalContext.processed, 1U);
    EXPECT_EQ(context_.errors, 0U);
    EXPECT_EQ(EnumMailTable(&context_, 5), 0);
    EXPECT_EQ(context_.errors, 1U);
}

TEST_F(Enumerate, AStopRequestEndsThePassAlsoBelowTheResumePoint)
{
    context_.resumeNote = 5;
    bShutDownThread = 1;
    EXPECT_EQ(EnumMailTable(&context_, 4), 719);
    EXPECT_TRUE(context_.stopped);
}

TEST_F(Enumerate, AResetEndsThePassWithoutAskingForAResume)
{
    bStopAndReset = 1;
    bShutDownThread = 1;
    EXPECT_EQ(EnumMailTable(&context_, 1), 719);
    EXPECT_FALSE(context_.stopped);
}

TEST_F(Enumerate, TheClientsEndInterruptsThePass)
{
    pavex::RequestTermination();
    EXPECT_EQ(EnumMailTable(&context_, 1), 719);
    pavex::RequestTermination(false);
    EXPECT_TRUE(context_.stopped);
}

TEST_F(Enumerate, AHistoryPassEndsWhenTheHistoryIsSwitchedOff)
{
    SetVariable("GDSNoIndexHistory", "1");
    context_.history = true;
    EXPECT_EQ(EnumMailTable(&context_, 1), 719);
    EXPECT_TRUE(context_.stopped);
    EXPECT_EQ(GlobalContext.processed, 0U);
    EXPECT_EQ(GlobalContext.historyActive, 1);
}

TEST_F(Enumerate, ANoteThatCannotBeOpenedIsCountedAndThePassGoesOn)
{
    SetVariable("GoogleDebug", "1");
    Open();
    EXPECT_EQ(EnumMailTable(&context_, 4711), 0);
    EXPECT_EQ(context_.errors, 1U);
    EXPECT_EQ(GlobalContext.errors, 1U);
    ASSERT_EQ(Logged(kLogNoteNotOpened), 1);
    EXPECT_EQ(log_.back().status, 551);
}

TEST_F(Enumerate, ADeletionRemovesTheEntryOfTheNote)
{
    const uint32_t id = mail_.Add("note");
    Open();
    ASSERT_EQ(EnumMailTable(&context_, id), 0);
    ASSERT_EQ(Subjects().size(), 1U);
    mail_.Delete(id);
    EXPECT_EQ(EnumMailTable(&context_, id | kDeletion), 0);
    EXPECT_EQ(context_.deleted, 1U);
    EXPECT_TRUE(Subjects().empty());
}

TEST_F(Enumerate, ADeletionWithRemovalSwitchedOffDoesNothing)
{
    SetVariable("GoogleNoDelete", "1");
    const uint32_t id = mail_.Add("note");
    Open();
    ASSERT_EQ(EnumMailTable(&context_, id), 0);
    mail_.Delete(id);
    EXPECT_EQ(EnumMailTable(&context_, id | kDeletion), 0);
    EXPECT_EQ(context_.deleted, 0U);
    EXPECT_EQ(Subjects().size(), 1U);
}

TEST_F(Enumerate, ADeletionOfANoteThatNobodyKnowsGoesByUncounted)
{
    Open();
    EXPECT_EQ(EnumMailTable(&context_, 4711 | kDeletion), 0);
    EXPECT_EQ(context_.deleted, 0U);
    EXPECT_EQ(context_.blankFailures, 0U);
    EXPECT_FALSE(context_.stopped);
}

TEST_F(Enumerate, ANoteWhoseKindIsSwitchedOffIsSkipped)
{
    SetGoogleSupport(16, false);
    const uint32_t id = mail_.Add("a meeting", "Appointment");
    Open();
    EXPECT_EQ(EnumMailTable(&context_, id), 0);
    EXPECT_EQ(context_.skipped, 1U);
    EXPECT_EQ(GlobalContext.skipped, 1U);
}

TEST_F(Enumerate, AnIndexerThatRemovedTheNoteIsCountedByItsResult)
{
    const uint32_t id = mail_.Add("a meeting without any time", "Appointment");
    Open();
    EXPECT_EQ(EnumMailTable(&context_, id), 0);
    EXPECT_EQ(context_.lastStatus, 549);
    EXPECT_EQ(context_.indexed, 1U);  // the removal succeeded: handled
}

TEST_F(Enumerate, AFalseAnswerAfterAnEarlierErrorIsCountedAsOne)
{
    SetGoogleSupport(16, false);
    const uint32_t id = mail_.Add("a meeting", "Appointment");
    Open();
    context_.lastStatus = 551;  // what the indexer before left
    EXPECT_EQ(EnumMailTable(&context_, id), 0);
    EXPECT_EQ(context_.errors, 1U);
    EXPECT_EQ(context_.skipped, 0U);
}

TEST_F(Enumerate, AFalseAnswerAfterARemovalIsCountedAsADeletion)
{
    SetGoogleSupport(16, false);
    const uint32_t id = mail_.Add("a meeting", "Appointment");
    Open();
    context_.lastStatus = 549;
    EXPECT_EQ(EnumMailTable(&context_, id), 0);
    EXPECT_EQ(context_.deleted, 1U);
}

TEST_F(Enumerate, ABlankWriteThatFailedStopsThePassForALaterRetry)
{
    SetGoogleSupport(16, false);
    const uint32_t id = mail_.Add("a meeting", "Appointment");
    Open();
    context_.blankResult = 9;
    EXPECT_EQ(EnumMailTable(&context_, id), 11779);
    EXPECT_TRUE(context_.stopped);
    EXPECT_EQ(context_.blankFailures, 1U);
    EXPECT_EQ(GlobalContext.blankFailures, 1U);
}

TEST_F(Enumerate, InAHistoryPassOnlyTheContextCounts)
{
    const uint32_t id = mail_.Add("not a history entry");
    Open();
    context_.history = true;
    EXPECT_EQ(EnumMailTable(&context_, id), 0);
    EXPECT_EQ(context_.skipped, 1U);
    EXPECT_EQ(GlobalContext.skipped, 0U);
}

// Milliseconds that the pauses of `notes` indexed notes take with a wait time.
class Pauses : public Enumerate {
protected:
    std::vector<uint64_t> Take(const char* waitTime, int notes)
    {
        SetVariable("GoogleWaitTime", waitTime);
        mail_.AddMany(notes, "note");
        Open();
        std::vector<uint64_t> pauses;
        for (int id = 1; id <= notes; ++id) {
            const uint64_t before = clock_.TimerMilliseconds();
            EXPECT_EQ(EnumMailTable(&context_, static_cast<NOTEID>(id)), 0);
            pauses.push_back(clock_.TimerMilliseconds() - before);
        }
        return pauses;
    }
};

TEST_F(Pauses, TheDefaultComesAsAHundredMillisecondsEveryFifthNote)
{
    EXPECT_EQ(Take("20", 11), (std::vector<uint64_t>{0, 0, 0, 0, 100, 0, 0, 0, 0, 100, 0}));
}

TEST_F(Pauses, ShortWaitsAreGatheredAsOftenAsTheyFitIntoAHundred)
{
    EXPECT_EQ(Take("50", 4), (std::vector<uint64_t>{0, 100, 0, 100}));
}

TEST_F(Pauses, AWaitThatDoesNotDivideAHundredIsGatheredRoundedDown)
{
    EXPECT_EQ(Take("30", 6), (std::vector<uint64_t>{0, 0, 90, 0, 0, 90}));
}

TEST_F(Pauses, LongWaitsFollowEveryNote)
{
    EXPECT_EQ(Take("51", 3), (std::vector<uint64_t>{51, 51, 51}));
}

TEST_F(Pauses, NoWaitIsNoPause)
{
    EXPECT_EQ(Take("0", 3), (std::vector<uint64_t>{0, 0, 0}));
}

TEST_F(Enumerate, TheHistoryCheckIsMadeEveryTenthNote)
{
    Mailbox history(PathOf("bookmark.vlt"), "History");
    SetVariable("GoogleDebug", "1");
    Configure(15, history.Path());
    mail_.AddMany(26, "note");
    Open();
    std::vector<NOTEID> checked;
    for (NOTEID id = 1; id <= 26; ++id) {
        dwHistoryCount = OSGetSystemTimer() - 60000;
        const int before = Logged(kLogOpened);
        ASSERT_EQ(EnumMailTable(&context_, id), 0);
        if (Logged(kLogOpened) != before)
            checked.push_back(id);
    }
    EXPECT_EQ(checked, (std::vector<NOTEID>{5, 15, 25}));
}

}  // namespace
