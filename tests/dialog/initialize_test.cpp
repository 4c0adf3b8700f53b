// tests/dialog/initialize_test.cpp: the dialog as it opens.
#include <gmock/gmock.h>

#include "addin/lifecycle.h"
#include "client/store/charset.h"
#include "dialog/settings_dialog.h"
#include "settings/progress.h"
#include "tests/dialog/dialog_fixture.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;

class InitializeDialogTest : public DialogFixture {
protected:
    json Opened()
    {
        const DialogRun run = Drive({pavex::ShowJsonAction()});
        EXPECT_EQ(run.result, 2);  // cancelled at the end of the script
        return run.shown.at(0);
    }
};

TEST_F(InitializeDialogTest, ProposesMailAndAddressBookWithoutSavedDatabasesAndEnablesApply)
{
    SetIni("GDSIndexEnabled", "1");
    SetIni("MailFile", "mail.vlt");
    const std::string mail = MakeDatabase("mail.vlt");
    const std::string names = MakeDatabase("names.vlt");
    const json controls = Opened();
    EXPECT_EQ(Items(controls), json({mail, names}));
    EXPECT_EQ(controls.at("3383").at("selected"), 0);
    EXPECT_TRUE(IsEnabledIn(controls, kButtonApply));
    EXPECT_EQ(numIniFiles, 0);
}

TEST_F(InitializeDialogTest, EnablesApplyForProposalsWhileIndexingIsOffToo)
{
    MakeDatabase("names.vlt");
    EXPECT_TRUE(IsEnabledIn(Opened(), kButtonApply));
}

TEST_F(InitializeDialogTest, PrefersTheSearchEnginesMailFile)
{
    const std::string other = MakeDatabase("other.vlt");
    MakeDatabase("mail.vlt");
    SetIni("MailFile", "mail.vlt");
    SetIni("GoogleMailFile", other);  // absolute: taken as it is
    EXPECT_EQ(Items(Opened()), json({other}));
}

TEST_F(InitializeDialogTest, ProposesARelativeMailFileByItsWholePath)
{
    const std::string mail = MakeDatabase("mail.vlt");
    SetIni("MailFile", "sub/.././mail.vlt");
    EXPECT_EQ(Items(Opened()), json({mail}));
}

TEST_F(InitializeDialogTest, ProposesADatabaseOnceThoughItIsMailAndAddressBook)
{
    const std::string names = MakeDatabase("names.vlt");
    SetIni("MailFile", "names.vlt");
    EXPECT_EQ(Items(Opened()), json({names}));
}

TEST_F(InitializeDialogTest, ProposesNothingThatDoesNotVerifyAndSaysNothingOfIt)
{
    SetIni("MailFile", "missing.vlt");
    WriteWholeFile(home_ / "data/names.vlt", "no database");
    const DialogRun run = Drive({pavex::ShowJsonAction()});
    EXPECT_EQ(Items(run.shown.at(0)), json::array());
    EXPECT_EQ(run.boxes.size(), 0U);
    EXPECT_FALSE(IsEnabledIn(run.shown.at(0), kButtonApply));
}

TEST_F(InitializeDialogTest, ListsTheSavedDatabasesAndSelectsTheFirst)
{
    SetIni("GDSIndexEnabled", "1");
    SetIni("MailFile", "mail.vlt");
    MakeDatabase("mail.vlt");  // not proposed: there are saved ones
    SetDbPath(2, "/b.vlt");
    SetDbPath(5, "/gone.vlt");  // listed though it is not there now
    const json controls = Opened();
    EXPECT_EQ(Items(controls), json({"/b.vlt", "/gone.vlt"}));
    EXPECT_EQ(controls.at("3383").at("selected"), 0);
    EXPECT_FALSE(IsEnabledIn(controls, kButtonApply));
    EXPECT_EQ(numIniFiles, 2);
}

TEST_F(InitializeDialogTest, ListsADatabaseOnceThatTwoSlotsHold)
{
    SetDbPath(0, "/a.vlt");
    SetDbPath(3, "/a.vlt");
    const json controls = Opened();
    EXPECT_EQ(Items(controls), json({"/a.vlt"}));
    EXPECT_TRUE(IsEnabledIn(controls, kButtonApply));  // so that it can be put right
}

TEST_F(InitializeDialogTest, ShowsTheSavedOptions)
{
    for (const char* name : {"GDSIndexEncrypted", "GDSIndexOnIdle", "GDSNoIndexHistory"})
        SetIni(name, "1");
    SetIni("GDSFreqMinutes", "42");
    const json controls = Opened();
    std::vector<int> checked;
    for (int id = kCheckEnabled; id <= kCheckReindex; ++id) {
        if (controls.at(std::to_string(id)).at("kind") == "check" && IsCheckedIn(controls, id))
            checked.push_back(id);
    }
    EXPECT_THAT(checked, ElementsAre(kCheckEncrypted, kCheckIdle));
    EXPECT_EQ(TextIn(controls, kEditFrequency), "42");
}

TEST_F(InitializeDialogTest, DisablesWhatDependsOnIndexingWhileItIsOff)
{
    SaveDatabases(1);
    const std::vector<int> dependent = {kCheckEncrypted, kCheckDrafts,   kCheckIdle,     kCheckDiscussion,
                                        kCheckHistory,   kListDatabases, kEditFrequency, kCheckReindex,
                                        kLabelFrequency, kLabelMinutes,  kButtonAdd,     kButtonRemove};
    const json off = Opened();
    SetIni("GDSIndexEnabled", "1");
    const json on = Opened();
    for (const int id : dependent) {
        EXPECT_FALSE(IsEnabledIn(off, id)) << id;
        EXPECT_TRUE(IsEnabledIn(on, id)) << id;
    }
    EXPECT_TRUE(IsEnabledIn(off, kLabelDatabases));
    EXPECT_EQ(TextIn(off, kTextInstructions), "<161>");
    EXPECT_EQ(TextIn(on, kTextInstructions), "<162>");
}

TEST_F(InitializeDialogTest, DisablesAddWithFifteenEntriesAndRemoveWithNone)
{
    SetIni("GDSIndexEnabled", "1");
    const json none = Opened();
    EXPECT_TRUE(IsEnabledIn(none, kButtonAdd));
    EXPECT_FALSE(IsEnabledIn(none, kButtonRemove));
    for (int slot = 0; slot < kDatabaseSlots; ++slot)
        SetDbPath(slot, ("/" + std::to_string(slot)).c_str());
    const json full = Opened();
    EXPECT_FALSE(IsEnabledIn(full, kButtonAdd));
    EXPECT_TRUE(IsEnabledIn(full, kButtonRemove));
}

TEST_F(InitializeDialogTest, HidesTheListButtonsWhenTheAdministratorFixedTheList)
{
    SetIni("AdminGDSLock", "1");
    SetIni("GDSIndexEnabled", "1");
    const DialogRun run = Drive({pavex::ShowJsonAction(), pavex::AddFileAction(kButtonAdd, kListDatabases, "/a.vlt")});
    EXPECT_FALSE(IsVisibleIn(run.shown.at(0), kButtonAdd));
    EXPECT_FALSE(IsVisibleIn(run.shown.at(0), kButtonRemove));
    EXPECT_EQ(run.error, "control 3384 (add) is hidden");
}

TEST_F(InitializeDialogTest, BringsTheNextCycleForwardAndStartsTheStatusTimer)
{
    Inspect([](pavex::Dialog& dialog) {
        EXPECT_EQ(bStartSoon, 1);
        EXPECT_TRUE(bSaveOnExit);
        ASSERT_EQ(dialog.Timers().size(), 1U);
        EXPECT_EQ(dialog.Timers()[0].id, 194U);
        EXPECT_EQ(dialog.Timers()[0].periodMs, 1000U);
        EXPECT_EQ(dialog.Find(kEditFrequency)->editLimit, 2U);
    });
}

}  // namespace
