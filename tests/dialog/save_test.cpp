// tests/dialog/save_test.cpp: OK and Apply.
#include <gmock/gmock.h>

#include "addin/lifecycle.h"
#include "client/store/host.h"
#include "client/windows/dialog_resources.h"
#include "dialog/settings_dialog.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "tests/dialog/dialog_fixture.h"

namespace {

using nlohmann::json;
using pavex::BoxAnswers;
using pavex::BoxIcon;
using testing::ElementsAre;

class SaveDialogTest : public DialogFixture {
protected:
    SaveDialogTest() { SetIni("GDSIndexEnabled", "1"); }
    void SetProgress(int slot, unsigned int hour)
    {
        const TIMEDATE since = SomeTime(hour);
        const TIMEDATE until = SomeTime(hour + 1);
        SetDbTimestamp(slot, &since, &until, 7, 10, 40);
    }
};

const pavex::TextAction kOk = pavex::PressAction(kButtonOk);
const pavex::TextAction kApply = pavex::PressAction(kButtonApply);

TEST_F(SaveDialogTest, WritesEveryOptionAsTheControlsSay)
{
    SaveDatabases(1);
    const DialogRun run =
        Drive({pavex::SetCheckAction(kCheckEncrypted, true), pavex::SetCheckAction(kCheckDrafts, true),
               pavex::SetCheckAction(kCheckIdle, true), pavex::SetCheckAction(kCheckHistory, false),
               pavex::SetCheckAction(kCheckDiscussion, true), pavex::TypeTextAction(kEditFrequency, "10"), kOk},
              BoxAnswers::Yes);
    EXPECT_EQ(run.result, 1);
    const std::vector<std::string> written = {Ini("GDSIndexEncrypted"),  Ini("GDSIndexDrafts"),
                                              Ini("GDSIndexOnIdle"),     Ini("GDSNoIndexHistory"),
                                              Ini("GDSIndexDiscussion"), Ini("GDSFreqMinutes")};
    EXPECT_THAT(written, ElementsAre("1", "1", "1", "1", "1", "10"));
}

std::string settingsMeanwhile;

// The user waits for each time that the file is written.
TEST_F(SaveDialogTest, WritesAllThatOneMessageChangesTogetherAtItsEnd)
{
    const std::string before = IniFile();
    pavex::Dialog dialog(*pavex::FindDialogResource(kSettingsDialogResource),
                         [](unsigned long, unsigned int, unsigned long, long) {
                             SetIndexingFreq(42);
                             SetDbPath(3, "/a.vlt");
                             settingsMeanwhile = ReadWholeFile(pavex::CurrentPlaces().ini);
                             return 0;
                         });
    dialog.Send(kMessageCommand, kButtonApply, 0);
    EXPECT_EQ(settingsMeanwhile, before);
    EXPECT_EQ(Ini("GDSFilePath3"), "/a.vlt");
    EXPECT_NE(IniFile().find("GDSFreqMinutes=42"), std::string::npos);
    EXPECT_NE(IniFile().find("GDSFilePath3=/a.vlt"), std::string::npos);
}

TEST_F(SaveDialogTest, SavesProposedDatabasesWithOk)
{
    const std::string names = MakeDatabase("names.vlt");
    EXPECT_EQ(Drive({kOk}).result, 1);
    EXPECT_THAT(Slots(), ElementsAre(names));
    EXPECT_EQ(Ini("GDSFilePath"), names);
    EXPECT_EQ(numIniFiles, 1);
}

TEST_F(SaveDialogTest, KeepsTheSlotAndTheProgressOfDatabasesThatStay)
{
    SetDbPath(1, "/one.vlt");
    SetDbPath(3, "/three.vlt");
    SetDbPath(4, "/four.vlt");
    SetProgress(1, 1);
    SetProgress(3, 3);
    SetProgress(4, 4);
    const std::string kept = Ini("GDSTimestamp3");
    const std::string a = MakeDatabase("a.vlt");
    const std::string b = MakeDatabase("b.vlt");
    const DialogRun run = Drive({pavex::RemoveFileAction(kButtonRemove, kListDatabases, "/one.vlt"),
                                 pavex::AddFileAction(kButtonAdd, kListDatabases, a),
                                 pavex::AddFileAction(kButtonAdd, kListDatabases, b), kApply, pavex::ShowJsonAction()});
    EXPECT_EQ(run.error, "");
    EXPECT_THAT(Slots(), ElementsAre(a, b, "", "/three.vlt", "/four.vlt"));
    EXPECT_EQ(Ini("GDSTimestamp3"), kept);
    EXPECT_EQ(Ini("GDSTimestamp1"), "");  // what the removed database left is gone
    unsigned int processed = 0;
    unsigned int total = 0;
    EXPECT_TRUE(GetDbRecoveryProgress(4, &processed, &total));
    EXPECT_EQ(processed, 10U);
    EXPECT_EQ(numIniFiles, 4);
    EXPECT_FALSE(IsEnabledIn(run.shown.at(0), kButtonApply));
}

TEST_F(SaveDialogTest, ClearsTheSecondSlotOfADatabaseThatTwoSlotsHold)
{
    SetDbPath(0, "/a.vlt");
    SetDbPath(3, "/a.vlt");
    EXPECT_EQ(Drive({kOk}).result, 1);
    EXPECT_THAT(Slots(), ElementsAre("/a.vlt"));
    EXPECT_EQ(numIniFiles, 1);
}

TEST_F(SaveDialogTest, StoresNoMoreThanFifteenDatabases)
{
    Inspect([&](pavex::Dialog& dialog) {
        for (int i = 0; i < 17; ++i)
            UIXListboxAddItem(dialog.Window(), kListDatabases, ("/" + std::to_string(i)).c_str());
        std::string error;
        EXPECT_TRUE(dialog.Press(kButtonOk, &error)) << error;
    });
    EXPECT_EQ(Slots().size(), 15U);
    EXPECT_EQ(numIniFiles, 15);
}

TEST_F(SaveDialogTest, AppliesAReindexByResettingAndUnchecksTheBox)
{
    SaveDatabases(1);
    SetProgress(0, 2);
    const DialogRun run = Drive({pavex::SetCheckAction(kCheckReindex, true), kApply, pavex::ShowJsonAction()});
    EXPECT_EQ(run.boxes.size(), 0U);
    EXPECT_EQ(bStopAndReset, 1);
    EXPECT_EQ(bStartSoon, 1);
    EXPECT_EQ(Ini("GDSTimestamp"), "");
    EXPECT_FALSE(IsCheckedIn(run.shown.at(0), kCheckReindex));
    EXPECT_FALSE(IsEnabledIn(run.shown.at(0), kButtonApply));
}

TEST_F(SaveDialogTest, BringsTheNextCycleForwardOnlyWhileIndexingIsOn)
{
    SaveDatabases(1);
    for (const bool enabled : {true, false}) {
        Inspect([&](pavex::Dialog& dialog) {
            CheckDlgButton(dialog.Window(), kCheckEnabled, enabled ? 1 : 0);
            bStartSoon = 0;  // opening the dialog set it
            std::string error;
            EXPECT_TRUE(dialog.Press(kButtonOk, &error)) << error;
            EXPECT_EQ(bStartSoon, enabled ? 1 : 0);
            EXPECT_EQ(bStopAndReset, 0);
        });
    }
}

TEST_F(SaveDialogTest, BringsTheCycleForwardThatIndexesEverythingAgain)
{
    SaveDatabases(1);
    Inspect([](pavex::Dialog& dialog) {
        std::string error;
        EXPECT_TRUE(dialog.Toggle(kCheckReindex, &error)) << error;
        bStartSoon = 0;
        EXPECT_TRUE(dialog.Press(kButtonOk, &error)) << error;
        EXPECT_EQ(bStopAndReset, 1);
        EXPECT_EQ(bStartSoon, 1);
    });
}

TEST_F(SaveDialogTest, ResetsNothingWhileIndexingIsSwitchedOff)
{
    SaveDatabases(1);
    Drive({pavex::SetCheckAction(kCheckReindex, true), pavex::SetCheckAction(kCheckEnabled, false), kOk});
    EXPECT_EQ(bStopAndReset, 0);
    EXPECT_EQ(Ini("GDSIndexEnabled"), "0");
}

struct WidenedCase {
    const char* variable;
    int control;
    bool saved;
    bool asks;
};

TEST_F(SaveDialogTest, AsksForAReindexWhenTheOptionsWiden)
{
    SaveDatabases(1);
    const WidenedCase cases[] = {
        {"GDSIndexEncrypted", kCheckEncrypted, true, true},    {"GDSIndexEncrypted", kCheckEncrypted, false, true},
        {"GDSIndexDrafts", kCheckDrafts, true, true},          {"GDSIndexDrafts", kCheckDrafts, false, true},
        {"GDSIndexDiscussion", kCheckDiscussion, true, false}, {"GDSIndexDiscussion", kCheckDiscussion, false, true},
        {"GDSIndexOnIdle", kCheckIdle, false, false},          {"GDSNoIndexHistory", kCheckHistory, true, false},
    };
    for (const WidenedCase& tried : cases) {
        SCOPED_TRACE(testing::Message() << tried.variable << " saved as " << tried.saved);
        SetIni(tried.variable, tried.saved ? "1" : "0");
        bStopAndReset = 0;
        const bool shown = tried.control == kCheckHistory ? !tried.saved : tried.saved;
        const DialogRun run = Drive({pavex::SetCheckAction(tried.control, !shown), kOk}, BoxAnswers::Yes);
        EXPECT_EQ(run.result, 1);
        EXPECT_EQ(run.boxes.size(), tried.asks ? 1U : 0U);
        EXPECT_EQ(bStopAndReset, tried.asks ? 1 : 0);
        if (tried.asks) {
            EXPECT_EQ(run.boxes.at(0).box.text, "<149>");
            EXPECT_EQ(run.boxes.at(0).box.caption, "<150>");
            EXPECT_EQ(run.boxes.at(0).box.icon, BoxIcon::Question);
            EXPECT_TRUE(run.boxes.at(0).box.canCancel);
        }
    }
}

TEST_F(SaveDialogTest, SavesNothingAndStaysOpenWhenTheReindexIsDeclined)
{
    SaveDatabases(1);
    const std::string before = IniFile();
    bStartSoon = 0;
    const DialogRun run = Drive({pavex::SetCheckAction(kCheckEncrypted, true),
                                 pavex::TypeTextAction(kEditFrequency, "30"), kOk, pavex::ShowJsonAction()},
                                BoxAnswers::No);
    ASSERT_EQ(run.shown.size(), 1U);  // still open after OK
    EXPECT_TRUE(IsCheckedIn(run.shown[0], kCheckEncrypted));
    EXPECT_TRUE(IsEnabledIn(run.shown[0], kButtonApply));
    EXPECT_EQ(run.result, 2);
    EXPECT_EQ(IniFile(), before);
    EXPECT_EQ(bStopAndReset, 0);
}

TEST_F(SaveDialogTest, AsksNothingWithoutDatabasesBeforeAndAfter)
{
    const std::string added = MakeDatabase("added.vlt");
    const DialogRun first = Drive(
        {pavex::SetCheckAction(kCheckEncrypted, true), pavex::AddFileAction(kButtonAdd, kListDatabases, added), kOk});
    EXPECT_EQ(first.boxes.size(), 0U);  // none were saved before
    const DialogRun second = Drive({pavex::SetCheckAction(kCheckEncrypted, false),
                                    pavex::RemoveFileAction(kButtonRemove, kListDatabases, added), kOk});
    EXPECT_EQ(second.boxes.size(), 0U);  // none are left
    EXPECT_EQ(bStopAndReset, 0);
}

TEST_F(SaveDialogTest, AsksNothingWhenIndexingIsSwitchedOffAsTheOptionsWiden)
{
    SaveDatabases(1);
    const DialogRun run = Drive({pavex::SetCheckAction(kCheckEncrypted, true),
                                 pavex::SetCheckAction(kCheckEnabled, false), pavex::PressAction(kButtonOk)});
    EXPECT_EQ(run.boxes.size(), 0U);
    EXPECT_EQ(Ini("GDSIndexEncrypted"), "1");
    EXPECT_EQ(Ini("GDSIndexEnabled"), "0");
    EXPECT_EQ(bStopAndReset, 0);
}

TEST_F(SaveDialogTest, AsksNothingTheFirstTimeAfterRegistration)
{
    SaveDatabases(1);
    SetJustRegistered(1);
    const DialogRun run = Drive({pavex::SetCheckAction(kCheckEncrypted, true), kOk});
    EXPECT_EQ(run.result, 1);
    EXPECT_EQ(run.boxes.size(), 0U);
    EXPECT_EQ(bStopAndReset, 0);
    EXPECT_EQ(JustRegistered(), 0U);
    EXPECT_EQ(Ini("GDSIndexEncrypted"), "1");
}

TEST_F(SaveDialogTest, SavesNothingWhileTheControlsAreHidden)
{
    SaveDatabases(1);
    const std::string before = IniFile();
    for (const int button : {kButtonApply, kButtonOk}) {
        Inspect([&](pavex::Dialog& dialog) {
            std::string error;
            EXPECT_TRUE(dialog.Toggle(kCheckReindex, &error));
            EXPECT_TRUE(dialog.Toggle(kCheckDrafts, &error));
            ShowControls(dialog.Window(), false);
            const auto id = static_cast<unsigned long>(button);
            EXPECT_EQ(DlgProc(dialog.Window(), kMessageCommand, id, 0), button == kButtonOk ? 1 : 0);
            EXPECT_EQ(dialog.Result(), button == kButtonOk ? 1 : -1);
            EXPECT_EQ(dialog.Find(kCheckReindex)->checked, button == kButtonOk ? 1U : 0U);
        });
    }
    EXPECT_EQ(IniFile(), before);
}

TEST_F(SaveDialogTest, BoundsTheFrequency)
{
    SaveDatabases(1);
    const std::pair<const char*, uint32_t> typed[] = {{"0", 5}, {"", 5}, {"x", 5}, {"99", 99}, {"7", 7}, {"-1", 99}};
    for (const auto& [text, minutes] : typed) {
        EXPECT_EQ(Drive({pavex::TypeTextAction(kEditFrequency, text), kOk}).result, 1);
        EXPECT_EQ(GetIndexingFreq(), minutes) << text;
    }
}

TEST_F(SaveDialogTest, TellsTheUserWhenTheListCannotBeRead)
{
    const pavex::ControlRow rows[] = {{1, pavex::ControlKind::Button, "ok", "OK"},
                                      {2, pavex::ControlKind::Button, "cancel", "Cancel"}};
    const pavex::DialogResource withoutList = {1, "Broken", 1, 2, rows};
    pavex::TextFrontEnd frontEnd({});
    pavex::SetFrontEnd(&frontEnd);
    pavex::Dialog dialog(withoutList, DlgProc);
    dialog.Send(kMessageInitialize, 0, 0);
    const std::string before = IniFile();
    std::string error;
    EXPECT_TRUE(dialog.Press(kButtonOk, &error));
    ASSERT_EQ(frontEnd.Boxes().size(), 1U);
    EXPECT_EQ(frontEnd.Boxes()[0].box.text, "<112>");
    EXPECT_FALSE(dialog.Ended());
    EXPECT_EQ(IniFile(), before);
}

}  // namespace
