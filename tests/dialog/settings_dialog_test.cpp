// tests/dialog/settings_dialog_test.cpp: what keeps the controls consistent.
#include "dialog/settings_dialog.h"

#include <gmock/gmock.h>

#include "addin/lifecycle.h"
#include "settings/progress.h"
#include "tests/dialog/dialog_fixture.h"

namespace {

class SettingsDialog : public DialogFixture {
protected:
    SettingsDialog() { SetIni("GDSIndexEnabled", "1"); }
};

TEST_F(SettingsDialog, DiffersByEachOptionTheFrequencyAndTheList)
{
    SaveDatabases(2);
    const std::function<void(unsigned long)> changes[] = {
        [](unsigned long window) { CheckDlgButton(window, kCheckEnabled, 0); },
        [](unsigned long window) { CheckDlgButton(window, kCheckEncrypted, 1); },
        [](unsigned long window) { CheckDlgButton(window, kCheckDrafts, 1); },
        [](unsigned long window) { CheckDlgButton(window, kCheckIdle, 1); },
        [](unsigned long window) { CheckDlgButton(window, kCheckHistory, 0); },
        [](unsigned long window) { CheckDlgButton(window, kCheckDiscussion, 1); },
        [](unsigned long window) { UIXSetDlgItemText(window, kEditFrequency, "6"); },
        [](unsigned long window) { SendMessage(GetDlgItem(window, kListDatabases), kListDelete, 0, 0); },
        [](unsigned long window) {  // as many as before, but another
            SendMessage(GetDlgItem(window, kListDatabases), kListDelete, 0, 0);
            UIXListboxAddItem(window, kListDatabases, "/other.vlt");
        },
    };
    for (const auto& change : changes) {
        Inspect([&](pavex::Dialog& dialog) {
            EXPECT_FALSE(IsSomethingDifferent(dialog.Window()));
            change(dialog.Window());
            EXPECT_TRUE(IsSomethingDifferent(dialog.Window()));
        });
    }
}

TEST_F(SettingsDialog, CountsTheReindexBoxForApplyOnlyWhileItIsVisible)
{
    SaveDatabases(1);
    Inspect([](pavex::Dialog& dialog) {
        CheckDlgButton(dialog.Window(), kCheckReindex, 1);
        EXPECT_FALSE(IsSomethingDifferent(dialog.Window()));
        SetApplyButton(dialog.Window());
        EXPECT_TRUE(dialog.Find(kButtonApply)->enabled);
        dialog.Find(kCheckReindex)->visible = false;
        SetApplyButton(dialog.Window());
        EXPECT_FALSE(dialog.Find(kButtonApply)->enabled);
    });
}

TEST_F(SettingsDialog, DisablesTheListButtonsWhileIndexingIsUnchecked)
{
    SaveDatabases(1);
    Inspect([](pavex::Dialog& dialog) {
        CheckDlgButton(dialog.Window(), kCheckEnabled, 0);
        SetListButtons(dialog.Window());
        EXPECT_FALSE(dialog.Find(kButtonAdd)->enabled);
        EXPECT_FALSE(dialog.Find(kButtonRemove)->enabled);
    });
}

TEST_F(SettingsDialog, ShowsAndHidesItsContent)
{
    SaveDatabases(1);
    const std::vector<int> content = {3382, 3383, 3384, 3385, 3386, 3387, 3388, 3389, 3390,
                                      3391, 3392, 3393, 3394, 3395, 3396, 3398, 3400};
    Inspect([&](pavex::Dialog& dialog) {
        CheckDlgButton(dialog.Window(), kCheckDrafts, 1);
        for (const bool show : {false, true}) {
            ShowControls(dialog.Window(), show);
            for (const pavex::Control& control : dialog.Controls()) {
                const bool isContent = std::count(content.begin(), content.end(), control.id) != 0;
                EXPECT_EQ(control.visible, show || !isContent) << control.id;
            }
            EXPECT_EQ(dialog.Find(kButtonApply)->enabled, show);
            EXPECT_EQ(bSaveOnExit, show);
        }
    });
}

TEST_F(SettingsDialog, LeavesTheListButtonsHiddenWhenTheAdministratorFixedTheList)
{
    SetIni("AdminGDSLock", "1");
    Inspect([](pavex::Dialog& dialog) {
        ShowControls(dialog.Window(), true);
        EXPECT_FALSE(dialog.Find(kButtonAdd)->visible);
        EXPECT_FALSE(dialog.Find(kButtonRemove)->visible);
    });
}

TEST_F(SettingsDialog, AddsAFileToTheListOnce)
{
    Inspect([](pavex::Dialog& dialog) {
        EXPECT_EQ(AddToFileList(dialog.Window(), "/a.vlt"), 0);
        EXPECT_EQ(AddToFileList(dialog.Window(), "/b.vlt"), 1);
        EXPECT_EQ(AddToFileList(dialog.Window(), "/a.vlt"), 0);
        EXPECT_THAT(dialog.Find(kListDatabases)->entries, testing::ElementsAre("/a.vlt", "/b.vlt"));
    });
}

TEST_F(SettingsDialog, SetsTheIndexingStatusAsTheTimerDoes)
{
    SaveDatabases(1);
    Inspect([](pavex::Dialog& dialog) {
        GlobalContext.inProgress = 1;
        SetIndexingStatus(dialog.Window());
        EXPECT_EQ(dialog.Find(kTextSelectedStatus)->text, "<193><156>");
        GlobalContext.inProgress = 0;
        dialog.SendAllTimers();
        EXPECT_EQ(dialog.Find(kTextSelectedStatus)->text, "<193><107>");
    });
}

}  // namespace
