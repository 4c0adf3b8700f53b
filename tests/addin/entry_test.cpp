// tests/addin/entry_test.cpp: the client's messages.
#include "addin/entry.h"

#include <gmock/gmock.h>

#include <array>
#include <cstring>
#include <thread>

#include "addin/lifecycle.h"
#include "client/windows/dialog.h"
#include "client/windows/front_end.h"
#include "settings/settings.h"
#include "strings/string_ids.h"
#include "tests/addin/addin_fixture.h"
#include "tests/support/fault_plan.h"

namespace {

// The client's record, filled with a pattern so that every byte written shows.
class Record {
public:
    Record() { bytes_.fill('\x5A'); }
    void* Data() { return bytes_.data(); }
    uint16_t Status() const
    {
        uint16_t status = 0;
        std::memcpy(&status, bytes_.data() + 4, sizeof status);
        return status;
    }
    std::string MenuText() const { return {bytes_.data() + 6, strnlen(bytes_.data() + 6, 63)}; }
    bool FirstBytesUntouched() const { return std::string(bytes_.data(), 4) == "ZZZZ"; }
    bool Untouched() const { return bytes_ == Record().bytes_; }
    bool MenuTextUntouched() const { return std::string(bytes_.data() + 6, 63) == std::string(63, 'Z'); }
    bool EndUntouched() const { return bytes_[69] == 'Z'; }

private:
    std::array<char, 72> bytes_;
};

class Entry : public AddInTest {
protected:
    ~Entry() override
    {
        bShutDownThread = 1;
        pavex::JoinThreads();
    }
    Record record_;
};

TEST_F(Entry, LoadWritesTheMenuTextAndStartsTheThread)
{
    EXPECT_EQ(MainEntryPoint(0, record_.Data()), 0);
    EXPECT_EQ(record_.Status(), 1);
    EXPECT_EQ(record_.MenuText(), "Desktop Search...");
    EXPECT_TRUE(record_.FirstBytesUntouched());
    EXPECT_TRUE(record_.EndUntouched());
    EXPECT_EQ(bStarted, 1);
    EXPECT_EQ(bThreadExists, 1);
}

TEST_F(Entry, ASecondLoadDoesNothing)
{
    MainEntryPoint(0, record_.Data());
    Record second;
    EXPECT_EQ(MainEntryPoint(0, second.Data()), 0);
    EXPECT_TRUE(second.Untouched());
}

TEST_F(Entry, UnloadBeforeAnyLoadDoesNothing)
{
    EXPECT_EQ(MainEntryPoint(3, record_.Data()), 0);
    EXPECT_EQ(bShutDownThread, 0);
    EXPECT_TRUE(record_.Untouched());
}

TEST_F(Entry, UnloadAsksTheThreadToEnd)
{
    MainEntryPoint(0, record_.Data());
    EXPECT_EQ(MainEntryPoint(3, nullptr), 0);
    EXPECT_EQ(bShutDownThread, 1);
    pavex::JoinThreads();
    // The request may come before the thread has begun.
    EXPECT_THAT(log_.back().id, testing::AnyOf(kLogThreadEnded, kLogThreadNotStarted));
}

TEST_F(Entry, LoadAfterUnloadDoesNothing)
{
    MainEntryPoint(0, record_.Data());
    MainEntryPoint(3, nullptr);
    pavex::JoinThreads();
    const size_t entries = log_.size();
    Record second;
    EXPECT_EQ(MainEntryPoint(0, second.Data()), 0);
    EXPECT_TRUE(second.Untouched());
    pavex::JoinThreads();
    EXPECT_EQ(log_.size(), entries);
}

TEST_F(Entry, ALockedPolicyMeansNoMenuAndNoThread)
{
    WriteWholeFile(home_ / "policy.ini", "[DesktopSets]\nLocked=GDSIndexEnabled\n");
    EXPECT_EQ(MainEntryPoint(0, record_.Data()), 0);
    EXPECT_EQ(record_.Status(), 0xFFFF);
    EXPECT_TRUE(record_.MenuTextUntouched());
    EXPECT_EQ(bStarted, 0);
    EXPECT_EQ(bThreadExists, 0);
}

TEST_F(Entry, OnceLockedThePolicyStaysLockedInThisProcess)
{
    WriteWholeFile(home_ / "policy.ini", "[DesktopSets]\nLocked=GDSIndexEnabled\n");
    EXPECT_FALSE(ShouldStartPlugin());
    std::remove((home_ / "policy.ini").c_str());
    EXPECT_FALSE(ShouldStartPlugin());
}

TEST_F(Entry, APolicyThatLocksSomethingElseLocksNothing)
{
    WriteWholeFile(home_ / "policy.ini", "[DesktopSets]\nLocked=GDSFreqMinutes\n");
    EXPECT_TRUE(ShouldStartPlugin());
}

TEST_F(Entry, APolicyLookupThatFailsLeavesTheAddInAllowed)
{
    WriteWholeFile(home_ / "policy.ini", "[DesktopSets]\nLocked=GDSIndexEnabled\n");
    {
        const NamedFault noUser("SECKFMUserInfo");
        EXPECT_TRUE(ShouldStartPlugin());
    }
    const NamedFault noPolicy("NAMEGetPolicy");
    EXPECT_TRUE(ShouldStartPlugin());
}

TEST_F(Entry, AHiddenMenuStillStartsTheThread)
{
    SetVariable("AdminGDSNoMenu", "1");
    EXPECT_EQ(MainEntryPoint(0, record_.Data()), 0);
    EXPECT_EQ(record_.Status(), 0xFFFF);
    EXPECT_TRUE(record_.MenuTextUntouched());
    EXPECT_TRUE(record_.FirstBytesUntouched());
    EXPECT_TRUE(record_.EndUntouched());
    EXPECT_EQ(bStarted, 1);
    EXPECT_EQ(bThreadExists, 1);
    EXPECT_EQ(pavex::ThreadsMade(), 1);
}

TEST_F(Entry, AMenuHiddenAfterTheStartLeavesTheRecordAlone)
{
    MainEntryPoint(0, record_.Data());
    bAdminNoUI = 1;
    Record second;
    MainEntryPoint(0, second.Data());
    EXPECT_TRUE(second.Untouched());
    EXPECT_EQ(pavex::ThreadsMade(), 1);
}

TEST_F(Entry, APolicyThatLocksAfterTheStartTakesTheMenuEntryBack)
{
    MainEntryPoint(0, record_.Data());
    WriteWholeFile(home_ / "policy.ini", "[DesktopSets]\nLocked=GDSIndexEnabled\n");
    Record second;
    MainEntryPoint(0, second.Data());
    EXPECT_EQ(second.Status(), 0xFFFF);
    EXPECT_TRUE(second.MenuTextUntouched());
}

TEST_F(Entry, OffTheMainThreadThePolicysLastAnswerCounts)
{
    WriteWholeFile(home_ / "policy.ini", "[DesktopSets]\nLocked=GDSIndexEnabled\n");
    const auto askElsewhere = [] {
        bool allowed = false;
        std::thread([&allowed] { allowed = ShouldStartPlugin(); }).join();
        return allowed;
    };
    EXPECT_TRUE(askElsewhere());  // the policy is not looked up there
    EXPECT_FALSE(ShouldStartPlugin());
    EXPECT_FALSE(askElsewhere());
}

TEST_F(Entry, ThePolicyNoteIsClosed)
{
    WriteWholeFile(home_ / "policy.ini", "[DesktopSets]\nLocked=GDSFreqMinutes\n");
    const int open = pavex::OpenHandles();
    EXPECT_TRUE(ShouldStartPlugin());
    EXPECT_EQ(pavex::OpenHandles(), open);
}

// Notes which dialog was opened, and ends it as OK does.
class DialogOpener : public pavex::FrontEnd {
public:
    void Run(pavex::Dialog& dialog) override
    {
        ++runs;
        hasIndexingBox = dialog.Find(3382) != nullptr;
        timerPeriods.clear();
        for (const pavex::DialogTimer& timer : dialog.Timers())
            timerPeriods.push_back(timer.periodMs);
        EndDialog(dialog.Window(), 1);
    }
    int MessageBox(const pavex::MessageBoxRequest&) override { return pavex::kBoxAnswerOk; }
    bool ChooseFile(std::string*) override { return false; }

    int runs = 0;
    bool hasIndexingBox = false;
    std::vector<uint32_t> timerPeriods;
};

TEST_F(Entry, TheDialogsMessageOpensTheSettingsAndReturnsNothingOfThem)
{
    DialogOpener opener;
    pavex::SetFrontEnd(&opener);
    unsigned long argument = 0x1234567890UL;
    EXPECT_EQ(MainEntryPoint(2, &argument), 0);
    EXPECT_EQ(opener.runs, 1);
    EXPECT_TRUE(opener.hasIndexingBox);
    EXPECT_EQ(opener.timerPeriods, std::vector<uint32_t>{1000});  // it was initialized
    EXPECT_EQ(argument, 0x1234567890UL);
    EXPECT_EQ(bStarted, 0);  // neither needs a start nor is one
    EXPECT_EQ(MainEntryPoint(2, nullptr), 0);
    EXPECT_EQ(opener.runs, 2);
    EXPECT_EQ(RunAddInDialog(0), 1);
    pavex::SetFrontEnd(nullptr);
    EXPECT_EQ(RunAddInDialog(0), -1);
}

TEST_F(Entry, OtherMessagesDoNothing)
{
    for (const unsigned code : {1U, 4U, 17U, 0xFFFFU}) {
        EXPECT_EQ(MainEntryPoint(code, record_.Data()), 0);
        EXPECT_TRUE(record_.Untouched());
    }
    EXPECT_EQ(bStarted, 0);
}

TEST_F(Entry, TheMessageIsTheLowSixteenBitsOfTheCode)
{
    MainEntryPoint(0x70000, record_.Data());
    EXPECT_EQ(record_.Status(), 1);
}

TEST_F(Entry, AThreadThatCannotBeMadeLeavesTheMenuEntry)
{
    const NamedFault noThread("OSCreateThread");
    MainEntryPoint(0, record_.Data());
    EXPECT_EQ(record_.Status(), 1);
    EXPECT_EQ(bThreadExists, 0);
    EXPECT_TRUE(log_.empty());
}

}  // namespace
