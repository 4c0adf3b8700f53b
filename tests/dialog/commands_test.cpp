// tests/dialog/commands_test.cpp: what each control does.
#include <gmock/gmock.h>

#include "addin/lifecycle.h"
#include "client/windows/command_handles.h"
#include "dialog/settings_dialog.h"
#include "settings/progress.h"
#include "tests/dialog/dialog_fixture.h"

namespace {

using nlohmann::json;
using pavex::BoxAnswers;
using pavex::BoxIcon;

class DialogCommands : public DialogFixture {
protected:
    DialogCommands() { SetIni("GDSIndexEnabled", "1"); }
};

pavex::TextAction Add(const std::string& path)
{
    return pavex::AddFileAction(kButtonAdd, kListDatabases, path);
}

pavex::TextAction Remove(const std::string& path)
{
    return pavex::RemoveFileAction(kButtonRemove, kListDatabases, path);
}

TEST_F(DialogCommands, CancelEndsWithTwoAndSavesNothing)
{
    SaveDatabases(1);
    const std::string before = IniFile();
    const DialogRun run = Drive({pavex::SetCheckAction(kCheckDrafts, true), pavex::PressAction(kButtonCancel)});
    EXPECT_EQ(run.result, 2);
    EXPECT_EQ(IniFile(), before);
}

TEST_F(DialogCommands, SwitchingIndexingOffDisablesWhatDependsOnIt)
{
    SaveDatabases(1);
    const json controls = Drive({pavex::SetCheckAction(kCheckEnabled, false), pavex::ShowJsonAction()}).shown.at(0);
    EXPECT_FALSE(IsEnabledIn(controls, kCheckEncrypted));
    EXPECT_FALSE(IsEnabledIn(controls, kButtonAdd));
    EXPECT_TRUE(IsEnabledIn(controls, kButtonApply));
    EXPECT_EQ(TextIn(controls, kTextInstructions), "<161>");
}

TEST_F(DialogCommands, SwitchingIndexingOnShowsTheNoticeCutToWhatABoxTakes)
{
    SetIni("GDSIndexEnabled", "0");
    const DialogRun run = Drive({pavex::SetCheckAction(kCheckEnabled, true), pavex::ShowJsonAction()}, BoxAnswers::Yes);
    ASSERT_EQ(run.boxes.size(), 1U);
    EXPECT_EQ(run.boxes[0].box.text, std::string(1024, 'n'));
    EXPECT_EQ(run.boxes[0].box.caption, "<115>");
    EXPECT_EQ(run.boxes[0].box.icon, BoxIcon::Warning);
    EXPECT_TRUE(run.boxes[0].box.canCancel);
    EXPECT_TRUE(IsEnabledIn(run.shown.at(0), kCheckEncrypted));
    EXPECT_TRUE(IsEnabledIn(run.shown.at(0), kButtonApply));
    EXPECT_EQ(TextIn(run.shown.at(0), kTextInstructions), "<162>");
}

TEST_F(DialogCommands, SwitchingIndexingOnLeavesAFullListFullAndAnEmptyOneEmpty)
{
    SetIni("GoogleSkipLegal", "1");
    for (const size_t count : {size_t{0}, size_t{15}}) {
        SetIni("GDSIndexEnabled", "0");
        SaveDatabases(count);
        const json controls = Drive({pavex::SetCheckAction(kCheckEnabled, true), pavex::ShowJsonAction()}).shown.at(0);
        EXPECT_EQ(IsEnabledIn(controls, kButtonAdd), count == 0) << count;
        EXPECT_EQ(IsEnabledIn(controls, kButtonRemove), count != 0) << count;
        EXPECT_TRUE(IsEnabledIn(controls, kCheckReindex)) << count;
    }
}

TEST_F(DialogCommands, SwitchingIndexingShowsTheStatusAfresh)
{
    SetIni("GoogleSkipLegal", "1");
    SaveDatabases(1);
    Inspect([](pavex::Dialog& dialog) {
        std::string error;
        GlobalContext.inProgress = 1;
        EXPECT_TRUE(dialog.Toggle(kCheckEnabled, &error)) << error;
        EXPECT_EQ(dialog.Find(kTextSelectedStatus)->text, "<193><156>");
        GlobalContext.inProgress = 0;
        EXPECT_TRUE(dialog.Toggle(kCheckEnabled, &error)) << error;
        EXPECT_EQ(dialog.Find(kTextSelectedStatus)->text, "<193><107>");
    });
}

TEST_F(DialogCommands, EachOptionEnablesApplyWhileItDiffers)
{
    SaveDatabases(1);
    for (const int box : {kCheckEncrypted, kCheckDrafts, kCheckHistory, kCheckDiscussion, kCheckIdle}) {
        Inspect([&](pavex::Dialog& dialog) {
            std::string error;
            for (const bool differs : {true, false}) {
                EXPECT_TRUE(dialog.Toggle(box, &error)) << error;
                EXPECT_EQ(dialog.Find(kButtonApply)->enabled, differs) << box;
            }
        });
    }
    Inspect([](pavex::Dialog& dialog) {
        std::string error;
        for (const char* minutes : {"6", "5"}) {
            EXPECT_TRUE(dialog.Type(kEditFrequency, minutes, &error)) << error;
            EXPECT_EQ(dialog.Find(kButtonApply)->enabled, std::string(minutes) == "6");
        }
    });
}

TEST_F(DialogCommands, RefusingTheNoticeLeavesIndexingOff)
{
    SetIni("GDSIndexEnabled", "0");
    const json controls =
        Drive({pavex::SetCheckAction(kCheckEnabled, true), pavex::ShowJsonAction()}, BoxAnswers::No).shown.at(0);
    EXPECT_FALSE(IsCheckedIn(controls, kCheckEnabled));
    EXPECT_FALSE(IsEnabledIn(controls, kCheckEncrypted));
    EXPECT_FALSE(IsEnabledIn(controls, kButtonApply));
    EXPECT_EQ(TextIn(controls, kTextInstructions), "<161>");
}

TEST_F(DialogCommands, ShowsNoNoticeWhereItIsSkipped)
{
    SetIni("GDSIndexEnabled", "0");
    for (const char* name : {"GoogleSkipLegal", "GoogleBuildQuorvex"}) {
        SetIni(name, "1");
        const DialogRun run = Drive({pavex::SetCheckAction(kCheckEnabled, true), pavex::ShowJsonAction()});
        EXPECT_EQ(run.boxes.size(), 0U) << name;
        EXPECT_TRUE(IsCheckedIn(run.shown.at(0), kCheckEnabled)) << name;
        SetIni(name, "0");
    }
}

TEST_F(DialogCommands, CheckingReindexAloneEnablesApply)
{
    SaveDatabases(1);
    const DialogRun run = Drive({pavex::SetCheckAction(kCheckReindex, true), pavex::ShowJsonAction(),
                                 pavex::SetCheckAction(kCheckReindex, false), pavex::ShowJsonAction()});
    EXPECT_TRUE(IsEnabledIn(run.shown.at(0), kButtonApply));
    EXPECT_FALSE(IsEnabledIn(run.shown.at(1), kButtonApply));
}

TEST_F(DialogCommands, AddListsAndSelectsADatabaseThatVerifies)
{
    const std::vector<std::string> saved = SaveDatabases(1);
    const std::string added = MakeDatabase("added.vlt");
    const json controls = Drive({Add(added), pavex::ShowJsonAction()}).shown.at(0);
    EXPECT_EQ(Items(controls), json({saved[0], added}));
    EXPECT_EQ(controls.at("3383").at("selected"), 1);
    EXPECT_TRUE(IsEnabledIn(controls, kButtonApply));
}

TEST_F(DialogCommands, AddSelectsADatabaseThatIsListedAlready)
{
    const std::vector<std::string> saved = SaveDatabases(2);
    const json controls = Drive({Add(saved[1]), pavex::ShowJsonAction()}).shown.at(0);
    EXPECT_EQ(Items(controls), json(saved));
    EXPECT_EQ(controls.at("3383").at("selected"), 1);
    EXPECT_FALSE(IsEnabledIn(controls, kButtonApply));
}

TEST_F(DialogCommands, AddShowsWhyADatabaseDoesNotVerify)
{
    WriteWholeFile(home_ / "data/text.vlt", "no database");
    const std::string path = home_ / "data/text.vlt";
    const DialogRun run = Drive({Add(path)});
    EXPECT_EQ(run.error, path + " was not added: <184>");
    ASSERT_EQ(run.boxes.size(), 1U);
    EXPECT_EQ(run.boxes[0].box.caption, path);
    EXPECT_EQ(run.boxes[0].box.icon, BoxIcon::Warning);
    EXPECT_FALSE(run.boxes[0].box.canCancel);
}

TEST_F(DialogCommands, AddDoesNothingWhenTheUserCancels)
{
    const std::vector<std::string> saved = SaveDatabases(1);
    const DialogRun run = Drive({pavex::PressAction(kButtonAdd), pavex::ShowJsonAction()});
    EXPECT_EQ(Items(run.shown.at(0)), json(saved));
    EXPECT_EQ(run.boxes.size(), 0U);
}

TEST_F(DialogCommands, AddReportsAListThatTakesNoMore)
{
    const std::string added = MakeDatabase("added.vlt");
    Inspect([&](pavex::Dialog& dialog) {
        pavex::TextFrontEnd frontEnd({.script = {Add(added)}});
        pavex::SetFrontEnd(&frontEnd);
        while (UIXListboxAddItem(dialog.Window(), kListDatabases, "x") >= 0)
            continue;
        frontEnd.Run(dialog);
        ASSERT_EQ(frontEnd.Boxes().size(), 1U);
        EXPECT_EQ(frontEnd.Boxes()[0].box.text, "<261>");
        EXPECT_EQ(frontEnd.Boxes()[0].box.caption, "<260>");
        EXPECT_EQ(frontEnd.Boxes()[0].box.icon, BoxIcon::None);
    });
}

TEST_F(DialogCommands, AddIsDisabledByTheFifteenthEntryAndEnabledAgainByARemoval)
{
    SaveDatabases(14);
    const std::string last = MakeDatabase("last.vlt");
    const DialogRun run =
        Drive({pavex::ShowJsonAction(), Add(last), pavex::ShowJsonAction(), Remove(last), pavex::ShowJsonAction()});
    EXPECT_TRUE(IsEnabledIn(run.shown.at(0), kButtonAdd));
    EXPECT_FALSE(IsEnabledIn(run.shown.at(1), kButtonAdd));
    EXPECT_TRUE(IsEnabledIn(run.shown.at(2), kButtonAdd));
}

TEST_F(DialogCommands, RemovingTheFirstEntrySelectsTheNewFirst)
{
    const std::vector<std::string> saved = SaveDatabases(3);
    const json controls = Drive({Remove(saved[0]), pavex::ShowJsonAction()}).shown.at(0);
    EXPECT_EQ(Items(controls), json({saved[1], saved[2]}));
    EXPECT_EQ(controls.at("3383").at("selected"), 0);
    EXPECT_TRUE(IsEnabledIn(controls, kButtonApply));
}

TEST_F(DialogCommands, RemovingAnotherEntrySelectsTheOneBefore)
{
    const std::vector<std::string> saved = SaveDatabases(3);
    const json controls = Drive({Remove(saved[2]), pavex::ShowJsonAction()}).shown.at(0);
    EXPECT_EQ(controls.at("3383").at("selected"), 1);
}

TEST_F(DialogCommands, RemovingTheLastEntryLeavesNothingToRemove)
{
    const std::vector<std::string> saved = SaveDatabases(1);
    const json controls = Drive({Remove(saved[0]), pavex::ShowJsonAction(), pavex::TickAction()}).shown.at(0);
    EXPECT_EQ(Items(controls), json::array());
    EXPECT_EQ(controls.at("3383").at("selected"), -1);
    EXPECT_FALSE(IsEnabledIn(controls, kButtonRemove));
    EXPECT_TRUE(IsEnabledIn(controls, kButtonAdd));
}

TEST_F(DialogCommands, SelectingADatabaseShowsItsStatus)
{
    SaveDatabases(2);
    GlobalContext.database = 1;
    GlobalContext.inProgress = 1;
    const json controls = Drive({pavex::SelectAction(kListDatabases, 1), pavex::ShowJsonAction()}).shown.at(0);
    EXPECT_EQ(TextIn(controls, kTextSelectedStatus), "<193><156>");
}

TEST_F(DialogCommands, SelectingADatabaseSettlesApply)
{
    SaveDatabases(2);
    Inspect([](pavex::Dialog& dialog) {
        std::string error;
        CheckDlgButton(dialog.Window(), kCheckDrafts, 1);  // sends no command
        EXPECT_FALSE(dialog.Find(kButtonApply)->enabled);
        EXPECT_TRUE(dialog.Select(kListDatabases, 1, &error)) << error;
        EXPECT_TRUE(dialog.Find(kButtonApply)->enabled);
    });
}

TEST_F(DialogCommands, AddMakesOkSaveAlsoWhenNothingIsChosen)
{
    SaveDatabases(1);
    Inspect([](pavex::Dialog& dialog) {
        ShowControls(dialog.Window(), false);
        ASSERT_FALSE(bSaveOnExit);
        EXPECT_EQ(DlgProc(dialog.Window(), kMessageCommand, kButtonAdd, 0), 0);
        EXPECT_TRUE(bSaveOnExit);
    });
}

TEST_F(DialogCommands, TakeTheirIdFromEveryFormOfTheMessage)
{
    SaveDatabases(1);
    for (const unsigned long command :
         {pavex::CommandHandleOf(2), 0x40000000UL | 0x2000UL | 2UL, 0x40000000UL | 2UL, 2UL, 0x00050002UL}) {
        Inspect([&](pavex::Dialog& dialog) {
            EXPECT_EQ(DlgProc(dialog.Window(), kMessageCommand, command, 0), 1) << std::hex << command;
            EXPECT_EQ(dialog.Result(), 2);
        });
    }
}

TEST_F(DialogCommands, IgnoreOtherIdsAndOtherMessages)
{
    SaveDatabases(1);
    Inspect([](pavex::Dialog& dialog) {
        const pavex::Dialog& unchanged = dialog;
        for (const unsigned long id : {0UL, 3UL, 3387UL, 3394UL, 0x2002UL, 0x80000000UL | 4000UL})
            EXPECT_EQ(DlgProc(unchanged.Window(), kMessageCommand, id, 0), 0);
        EXPECT_EQ(DlgProc(unchanged.Window(), 1, 1, 0), 0);
        EXPECT_FALSE(unchanged.Ended());
    });
}

TEST_F(DialogCommands, DoNoHarmToAWindowThatIsGone)
{
    for (unsigned long id : {1UL, 3382UL, 3383UL, 3385UL, 3388UL, 3397UL})
        EXPECT_GE(DlgProc(77777, kMessageCommand, id, 0), 0);
    EXPECT_EQ(DlgProc(77777, kMessageTimer, 194, 0), 0);
}

}  // namespace
