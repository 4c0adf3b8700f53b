// tests/addin/entry_test.cpp: the client's messages.
#include "addin/entry.h"

#include <gmock/gmock.h>

#include <array>
#include <cstring>

#include "addin/lifecycle.h"
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
    MainEntryPoint(0, record_.Data());
    EXPECT_EQ(record_.Status(), 0xFFFF);
    EXPECT_EQ(bStarted, 1);
    EXPECT_EQ(bThreadExists, 1);
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
