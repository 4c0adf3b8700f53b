// tests/settings/settings_test.cpp: the ini variables, as the other folders ask for them.
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "addin/lifecycle.h"
#include "platform/store.h"
#include "settings/progress.h"
#include "tests/settings/client_home.h"
#include "tests/support/fault_plan.h"

namespace {

using Settings = ClientHome;

struct Switch {
    const char* key;
    bool (*read)();
    bool whenAbsent;
    void (*write)(bool);
};

const Switch kSwitches[] = {
    {"AdminGDSLock", HasAdminLockFiles, false, nullptr},
    {"AdminGDSNoMenu", HasAdminLockUI, false, nullptr},
    {"AdminGDS", HasAdminOverride, false, nullptr},
    {"GoogleDebug", IsDebug, false, nullptr},
    {"GoogleDebugLots", IsDebugLots, false, nullptr},
    {"GDSIndexEncrypted", IsIndexingEncrypted, false, SetIndexingEncrypted},
    {"GDSInstallInstructions", HasInstallInstructions, false, SetInstallInstructions},
    {"GoogleAllowRemote", CanIndexRemote, false, nullptr},
    {"GDSIndexDrafts", IsIndexingDrafts, false, SetIndexingDrafts},
    {"GDSNoIndexChats", IsIndexingChats, true, SetIndexingChats},
    {"GoogleNoDelete", IsDeletingNotes, true, nullptr},
    {"GDSIndexOnIdle", IsIdleIndexing, false, SetIdleIndexing},
    {"GDSIndexDiscussion", IsIndexingDiscussion, false, SetIndexingDiscussion},
    {"GDSNoIndexHistory", IsIndexingHistory, true, SetIndexingHistory},
    {"GoogleNoIndexAll", IsIndexingAllNotes, true, nullptr},
    {"GoogleSkipLegal", ShouldSkipLegal, false, nullptr},
    {"GoogleComputeOK", ComputeOK, false, nullptr},
};

TEST_F(Settings, HaveTheirDefaultsWithoutAnIniFile)
{
    for (const Switch& each : kSwitches)
        EXPECT_EQ(each.read(), each.whenAbsent) << each.key;
    EXPECT_FALSE(IsBuildForInhouse());
    EXPECT_FALSE(IsEnabled());
    EXPECT_EQ(GetIndexingFreq(), 5U);
    EXPECT_EQ(GetIndexingWaitTime(), 20U);
    EXPECT_EQ(GetQueryCookie(), 0U);
    EXPECT_EQ(JustRegistered(), 0U);
    EXPECT_EQ(GetHistoryIndex(), 15);
    EXPECT_EQ(GetGoogleStatus(), 0xC06F);
    EXPECT_LT(static_cast<int16_t>(GetGoogleStatus()), 0);
}

TEST_F(Settings, ReadEachSwitchFromItsVariableAlone)
{
    for (const Switch& set : kSwitches) {
        Ini(std::string(set.key) + "=1\n");
        ForgetSettings();
        for (const Switch& each : kSwitches) {
            const bool lots = std::string(set.key) == "GoogleDebugLots" && std::string(each.key) == "GoogleDebug";
            EXPECT_EQ(each.read(), each.whenAbsent != (lots || set.key == each.key)) << set.key << " " << each.key;
        }
    }
}

TEST_F(Settings, TakeAnyNumberButZeroForYes)
{
    Ini("GDSIndexDrafts=-7\nGDSIndexDiscussion=0\nGDSNoIndexChats=0\nGDSIndexOnIdle=no\n");
    EXPECT_TRUE(IsIndexingDrafts());
    EXPECT_FALSE(IsIndexingDiscussion());
    EXPECT_TRUE(IsIndexingChats());
    EXPECT_FALSE(IsIdleIndexing());
}

TEST_F(Settings, KeepTheFrequencyInItsBounds)
{
    const std::pair<const char*, uint32_t> cases[] = {{"0", 5},    {"1", 1},   {"99", 99}, {"100", 99},
                                                      {"250", 99}, {"-3", 99}, {"", 5},    {"soon", 5}};
    for (const auto& [text, minutes] : cases) {
        Ini("GDSFreqMinutes=" + std::string(text) + "\n");
        ForgetSettings();
        EXPECT_EQ(GetIndexingFreq(), minutes) << text;
    }
}

TEST_F(Settings, KnowAWaitOfZeroFromNone)
{
    const std::pair<const char*, uint32_t> cases[] = {
        {"GoogleWaitTime=0\n", 0}, {"", 20}, {"GoogleWaitTime=1500\n", 1500}, {"GoogleWaitTime=\n", 0}};
    for (const auto& [lines, milliseconds] : cases) {
        Ini(lines);
        ForgetSettings();
        EXPECT_EQ(GetIndexingWaitTime(), milliseconds) << lines;
    }
}

TEST_F(Settings, SetEachSwitchThatTheDialogChanges)
{
    for (const Switch& each : kSwitches) {
        if (each.write == nullptr)
            continue;
        each.write(!each.whenAbsent);
        EXPECT_EQ(each.read(), !each.whenAbsent) << each.key;
        EXPECT_EQ(Stored(each.key), "1") << each.key;
        each.write(each.whenAbsent);
        EXPECT_EQ(each.read(), each.whenAbsent) << each.key;
        EXPECT_EQ(Stored(each.key), "0") << each.key;
    }
}

TEST_F(Settings, SwitchChatsOffByTheirInvertedVariable)
{
    Ini("GDSNoIndexChats=1\n");
    EXPECT_FALSE(IsIndexingChats());
    SetIndexingChats(true);
    EXPECT_EQ(Stored("GDSNoIndexChats"), "0");
    SetIndexingChats(false);
    EXPECT_EQ(Stored("GDSNoIndexChats"), "1");
    EXPECT_FALSE(IsIndexingChats());
}

TEST_F(Settings, WriteNothingForTheValueTheyKnow)
{
    for (const Switch& each : kSwitches) {
        if (each.write != nullptr)
            each.write(each.whenAbsent);
        EXPECT_EQ(Stored(each.key), std::nullopt) << each.key;
    }
    SetIndexingFreq(5);
    EXPECT_EQ(Stored("GDSFreqMinutes"), std::nullopt);
    SetIndexingFreq(0);  // means 5
    EXPECT_EQ(Stored("GDSFreqMinutes"), std::nullopt);
}

TEST_F(Settings, AreReadOnceOnly)
{
    EXPECT_FALSE(IsIndexingDrafts());
    Ini("GDSIndexDrafts=1\nGDSFreqMinutes=30\n");
    EXPECT_FALSE(IsIndexingDrafts());
    getIniVariables();
    EXPECT_EQ(GetIndexingFreq(), 5U);
}

TEST_F(Settings, AreLoadedByASetterToo)
{
    Ini("GDSIndexDrafts=1\n");
    SetIndexingDrafts(true);
    EXPECT_TRUE(IsIndexingDrafts());
    SetIndexingDrafts(false);
    EXPECT_EQ(Stored("GDSIndexDrafts"), "0");
}

TEST_F(Settings, LoadTheProgressOfTheDatabasesToo)
{
    Ini("GDSFilePath4=four.vlt\n");
    getIniVariables();
    EXPECT_STREQ(szMailDbName[4], "four.vlt");
}

TEST_F(Settings, DoNotLoadForTheBuildFlagNorTheRegistration)
{
    Ini("GoogleBuildQuorvex=1\n");
    EXPECT_FALSE(IsBuildForInhouse());
    SetJustRegistered(1);
    EXPECT_EQ(JustRegistered(), 1U);
    EXPECT_EQ(bIniInit, 0);
    EXPECT_FALSE(IsDebug());
    EXPECT_TRUE(IsBuildForInhouse());
}

TEST_F(Settings, ReadTheMainSwitchEachTime)
{
    EXPECT_FALSE(IsEnabled());
    Ini("GDSIndexEnabled=1\n");
    EXPECT_TRUE(IsEnabled());
    SetEnabled(false);
    EXPECT_FALSE(IsEnabled());
    EXPECT_EQ(Stored("GDSIndexEnabled"), "0");
}

TEST_F(Settings, WriteTheMainSwitchOnlyWhenItChanges)
{
    SetEnabled(false);
    EXPECT_EQ(Stored("GDSIndexEnabled"), std::nullopt);
    Ini("GDSIndexEnabled=2\n");
    SetEnabled(true);
    EXPECT_EQ(Stored("GDSIndexEnabled"), "2");
    SetEnabled(false);
    SetEnabled(true);
    EXPECT_EQ(Stored("GDSIndexEnabled"), "1");
}

// In a process of its own: the policy's lock is for life.
TEST_F(Settings, ObeyThePolicyThatLocksTheMainSwitch)
{
    WriteWholeFile(home_ / "policy.ini", "[DesktopSets]\nLocked=GDSIndexEnabled\n");
    const auto locked = [this] {
        Ini("GDSIndexEnabled=1\n");
        const bool off = !IsEnabled();
        SetEnabled(false);
        const bool kept = Stored("GDSIndexEnabled") == "1";
        Ini("GDSIndexEnabled=0\n");
        SetEnabled(true);
        return off && kept && Stored("GDSIndexEnabled") == "1" && !IsEnabled();
    };
    EXPECT_EXIT(std::_Exit(locked() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST_F(Settings, SetTheFrequencyInItsBounds)
{
    SetIndexingFreq(30);
    EXPECT_EQ(Stored("GDSFreqMinutes"), "30");
    SetIndexingFreq(250);
    EXPECT_EQ(GetIndexingFreq(), 99U);
    EXPECT_EQ(Stored("GDSFreqMinutes"), "99");
    SetIndexingFreq(0);
    EXPECT_EQ(GetIndexingFreq(), 5U);
    EXPECT_EQ(Stored("GDSFreqMinutes"), "5");
    SetIndexingFreq(static_cast<uint32_t>(-1));  // what a negative entry in the dialog comes to
    EXPECT_EQ(GetIndexingFreq(), 99U);
}

TEST_F(Settings, KeepTheInstallCookieAndEmptyIt)
{
    Ini("GDSInstallTime2=77\n");
    EXPECT_EQ(GetQueryCookie(), 77U);
    SetQueryCookie(0);
    EXPECT_EQ(GetQueryCookie(), 0U);
    EXPECT_EQ(Stored("GDSInstallTime2"), "");
    SetQueryCookie(78);
    EXPECT_EQ(Stored("GDSInstallTime2"), "78");
    ASSERT_TRUE(pavex::RemoveVariable("GDSInstallTime2"));
    SetQueryCookie(78);  // known
    EXPECT_EQ(Stored("GDSInstallTime2"), std::nullopt);
}

TEST_F(Settings, HandOutTheDataFieldsOnceTheyAreLoaded)
{
    Ini("GoogleDataFields=Body;Comment\n");
    char fields[kDataFieldsBytes] = "before";
    EXPECT_FALSE(GetDataFieldsSearch(fields));
    EXPECT_STREQ(fields, "");
    getIniVariables();
    EXPECT_TRUE(GetDataFieldsSearch(fields));
    EXPECT_STREQ(fields, "Body;Comment");
}

TEST_F(Settings, ForgetTheDataFieldsWhenTheyCannotBeRead)
{
    std::strcpy(szDataFields, "Body");
    const NamedFault unreadable("OSGetEnvironmentString");  // says no, and leaves the text as it was
    getIniVariables();
    char fields[kDataFieldsBytes] = "before";
    EXPECT_FALSE(GetDataFieldsSearch(fields));
    EXPECT_STREQ(fields, "");
}

TEST_F(Settings, CutTheDataFieldsAtTheirBuffer)
{
    Ini("GoogleDataFields=" + std::string(400, 'f') + "\n");
    getIniVariables();
    char fields[kDataFieldsBytes];
    EXPECT_TRUE(GetDataFieldsSearch(fields));
    EXPECT_EQ(fields, std::string(kDataFieldsBytes - 1, 'f'));
}

TEST_F(Settings, AcceptEveryKindOfNoteAtFirst)
{
    for (const uint32_t kind : {1U, 2U, 4U, 16U, 32U, 64U, 256U, 2048U})
        EXPECT_TRUE(DoesGoogleSupport(kind)) << kind;
    EXPECT_FALSE(DoesGoogleSupport(8));
    EXPECT_FALSE(DoesGoogleSupport(128));
    EXPECT_TRUE(DoesGoogleSupport(8 | 32));
    EXPECT_FALSE(DoesGoogleSupport(0));
}

TEST_F(Settings, SwitchKindsOffAndOn)
{
    SetGoogleSupport(32 | 64, false);
    EXPECT_EQ(dwGoogleSupport, 0x0F77U & ~96U);
    SetGoogleSupport(64, true);
    EXPECT_TRUE(DoesGoogleSupport(64));
    SetGoogleSupport(32 | 64, true);  // one of them is on: nothing happens
    EXPECT_FALSE(DoesGoogleSupport(32));
    SetGoogleSupport(8, false);  // off already
    EXPECT_EQ(dwGoogleSupport, 0x0F77U & ~32U);
}

TEST_F(Settings, AlwaysAcceptMail)
{
    SetGoogleSupport(1 | 4, false);
    EXPECT_EQ(dwGoogleSupport, 0x0F77U & ~5U);
    EXPECT_TRUE(DoesGoogleSupport(1));
    EXPECT_FALSE(DoesGoogleSupport(4));
    SetGoogleSupport(1 | 4, true);
    EXPECT_EQ(dwGoogleSupport, 0x0F77U & ~5U);
}

TEST_F(Settings, LetEveryNinthIdleTickThrough)
{
    EXPECT_TRUE(ShouldIndexOnIdle());
    SetIdleIndexing(true);
    for (int tick = 1; tick <= 20; ++tick) {
        IdleIncrement();
        EXPECT_EQ(ShouldIndexOnIdle(), tick % 9 == 0) << tick;
    }
}

TEST_F(Settings, StopWhenTheThreadOrTheClientEnds)
{
    EXPECT_FALSE(ShouldStop());
    bShutDownThread = 1;
    EXPECT_TRUE(ShouldStop());
    bShutDownThread = 0;
    pavex::RequestTermination(true);
    EXPECT_TRUE(ShouldStop());
    pavex::RequestTermination(false);
    EXPECT_FALSE(ShouldStop());
}

TEST_F(Settings, MayBeAskedByTwoThreadsAtOnce)
{
    Ini("GDSFilePath=mail.vlt\nGoogleDataFields=Body\nGDSFreqMinutes=30\n");
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([i] {
            char text[kMaxDbPathBytes + 1];
            for (unsigned int note = 0; note < 20; ++note) {
                const TIMEDATE time{{note, 2454165}};
                SetIndexingDrafts((note + static_cast<unsigned int>(i)) % 2 != 0);
                SetDbTimestamp(i, &time, &time, note, note, note);
                static_cast<void>(GetDbPath(0, text, kMaxDbPathBytes));
                static_cast<void>(GetDataFieldsSearch(text));
                static_cast<void>(IsIndexingDrafts());
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(GetIndexingFreq(), 30U);
    EXPECT_EQ(GetDbIndex("mail.vlt"), 0);
}

}  // namespace
