// tests/client/windows/qt/controls_test.cpp: each control in the window, both ways.
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include "addin/lifecycle.h"
#include "client/windows/dialog_resources.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "tests/client/windows/qt/window_fixture.h"

namespace {

using pavex::ControlKind;

class ControlsInWindow : public WindowFixture {
protected:
    ControlsInWindow() { SetIni("GDSIndexEnabled", "1"); }

    std::vector<std::string> Entries()
    {
        std::vector<std::string> entries;
        const auto* const list = The<QListWidget>(kListDatabases);
        for (int row = 0; row < list->count(); ++row)
            entries.push_back(list->item(row)->text().toStdString());
        return entries;
    }
    int SelectedRow() { return The<QListWidget>(kListDatabases)->currentRow(); }
    bool IsUsable(int id) { return Widget(id)->isEnabled() && Widget(id)->isVisible(); }
    std::string Text(int id) { return The<QLabel>(id)->text().toStdString(); }
};

bool IsOfKind(const QWidget* widget, ControlKind kind)
{
    switch (kind) {
    case ControlKind::Button:
        return qobject_cast<const QPushButton*>(widget) != nullptr;
    case ControlKind::Check:
        return qobject_cast<const QCheckBox*>(widget) != nullptr;
    case ControlKind::List:
        return qobject_cast<const QListWidget*>(widget) != nullptr;
    case ControlKind::Edit:
        return qobject_cast<const QLineEdit*>(widget) != nullptr;
    case ControlKind::Text:
        return qobject_cast<const QLabel*>(widget) != nullptr;
    }
    return false;
}

TEST_F(ControlsInWindow, HaveOneWidgetOfTheirKindEach)
{
    Open([&] {
        std::map<int, int> widgets;
        for (const QWidget* const widget : Window().findChildren<QWidget*>()) {
            if (widget->property("controlId").isValid())
                ++widgets[widget->property("controlId").toInt()];
        }
        for (const pavex::ControlRow& row : pavex::FindDialogResource(kSettingsDialogResource)->controls) {
            EXPECT_EQ(widgets[row.id], 1) << row.id;
            EXPECT_TRUE(IsOfKind(Widget(row.id), row.kind)) << row.id;
            widgets.erase(row.id);
        }
        EXPECT_TRUE(widgets.empty());
    });
}

TEST_F(ControlsInWindow, SayWhatTheModelSays)
{
    Open([&] {
        EXPECT_EQ(Window().windowTitle(), "Desktop Search Settings");
        EXPECT_EQ(Text(kTextInstructions), "<162>");
        EXPECT_EQ(The<QPushButton>(kButtonOk)->text(), "OK");
        EXPECT_EQ(The<QPushButton>(kButtonCancel)->text(), "Cancel");
        EXPECT_EQ(The<QCheckBox>(kCheckDrafts)->text().remove('&'), "Index drafts");
        EXPECT_EQ(The<QLabel>(kLabelFrequency)->text().remove('&'), "Look for changes every");
        EXPECT_EQ(The<QLabel>(kLabelMinutes)->text(), "minutes");
    });
}

constexpr int kOptions[] = {kCheckEncrypted, kCheckDrafts, kCheckHistory, kCheckDiscussion, kCheckIdle};

TEST_F(ControlsInWindow, CheckBoxesShowTheModelAndChangeIt)
{
    SaveDatabases(1);
    const std::string ini = IniFile();
    for (const int option : kOptions) {
        SCOPED_TRACE(option);
        Open([&] {
            auto* const box = The<QCheckBox>(option);
            const bool before = Model(option).checked == 1;
            EXPECT_EQ(box->isChecked(), before);
            EXPECT_FALSE(IsUsable(kButtonApply));
            Click(option);
            EXPECT_EQ(box->isChecked(), !before);
            EXPECT_EQ(Model(option).checked == 1, !before);
            EXPECT_TRUE(IsUsable(kButtonApply));
            Click(option);
            EXPECT_EQ(Model(option).checked == 1, before);
            EXPECT_FALSE(IsUsable(kButtonApply));
            box->setFocus();
            Key(Qt::Key_Space);
            EXPECT_EQ(Model(option).checked == 1, !before);
        });
    }
    EXPECT_EQ(IniFile(), ini) << "cancelled, so not saved";
}

TEST_F(ControlsInWindow, OkSavesWhatIsCheckedAndTheNextWindowShowsIt)
{
    SaveDatabases(1);
    SetIni("GDSNoIndexHistory", "1");
    const long result = Open([&] {
        Click(kCheckIdle);
        Click(kCheckHistory);
        Type(kEditFrequency, "42");
        Click(kButtonOk);
    });
    EXPECT_EQ(result, kButtonOk);
    ReloadSettings();
    Open([&] {
        EXPECT_TRUE(The<QCheckBox>(kCheckIdle)->isChecked());
        EXPECT_TRUE(The<QCheckBox>(kCheckHistory)->isChecked());
        EXPECT_EQ(The<QLineEdit>(kEditFrequency)->text(), "42");
    });
}

TEST_F(ControlsInWindow, SwitchingOffDisablesAllThatDependsOnIt)
{
    SaveDatabases(1);
    Open([&] {
        Click(kCheckEnabled);
        for (const int id : {kCheckEncrypted, kCheckDrafts, kCheckHistory, kCheckDiscussion, kCheckIdle, kCheckReindex,
                             kListDatabases, kButtonAdd, kButtonRemove, kEditFrequency, kLabelFrequency, kLabelMinutes})
            EXPECT_FALSE(Widget(id)->isEnabled()) << id;
        EXPECT_TRUE(IsUsable(kButtonApply));
        EXPECT_EQ(Text(kTextInstructions), "<161>");
        Click(kCheckDrafts);  // what is disabled takes no click
        EXPECT_EQ(Model(kCheckDrafts).checked, 0U);
        Click(kButtonOk);
    });
    EXPECT_FALSE(IsEnabled());
}

TEST_F(ControlsInWindow, TheListShowsTheDatabasesAndTheSelectionByMouseAndKey)
{
    const std::vector<std::string> paths = SaveDatabases(3);
    Open([&] {
        EXPECT_EQ(Entries(), paths);
        EXPECT_EQ(SelectedRow(), 0);
        ClickEntry(2);
        EXPECT_EQ(Model(kListDatabases).selected, 2);
        Widget(kListDatabases)->setFocus();
        Key(Qt::Key_Up);
        EXPECT_EQ(Model(kListDatabases).selected, 1);
        ClickEntry(1, Qt::ControlModifier);  // would take the selection away
        EXPECT_EQ(Model(kListDatabases).selected, 1);
        EXPECT_EQ(The<QListWidget>(kListDatabases)->selectedItems().size(), 1);
    });
}

TEST_F(ControlsInWindow, AddTakesTheChosenFileAndSelectsIt)
{
    const std::string first = SaveDatabases(1).front();
    const std::string second = MakeDatabase("with & sign.vlt");
    NextChooser(Choose(second));
    const long result = Open([&] {
        Click(kButtonAdd);
        EXPECT_EQ(Entries(), (std::vector<std::string>{first, second}));
        EXPECT_EQ(SelectedRow(), 1);
        EXPECT_TRUE(IsUsable(kButtonApply));
        EXPECT_TRUE(QTest::qWaitFor([&] { return Text(kTextSelectedStatus) == "<193><157>"; }));
        Click(kButtonOk);
    });
    EXPECT_EQ(result, kButtonOk);
    EXPECT_EQ(Slots(), (std::vector<std::string>{first, second}));
}

TEST_F(ControlsInWindow, AddLooksForDatabasesWhereTheyAre)
{
    SaveDatabases(1);
    NextChooser([&](QFileDialog& chooser) {
        EXPECT_EQ(chooser.directory().absolutePath().toStdString(), home_ / "data");
        EXPECT_EQ(chooser.nameFilters().front(), "*.vlt");
        EXPECT_EQ(chooser.windowTitle(), "Desktop Search Settings");
        EXPECT_EQ(chooser.viewMode(), QFileDialog::List);
        chooser.reject();
    });
    Open([&] { Click(kButtonAdd); });
}

TEST_F(ControlsInWindow, AddDoesNothingWhenTheChooserIsCancelled)
{
    const std::vector<std::string> paths = SaveDatabases(1);
    NextChooser(ChooseNothing());
    Open([&] {
        Click(kButtonAdd);
        EXPECT_EQ(Entries(), paths);
        EXPECT_FALSE(IsUsable(kButtonApply));
    });
}

TEST_F(ControlsInWindow, AddTellsWhyAFileIsNoDatabase)
{
    const std::vector<std::string> paths = SaveDatabases(1);
    WriteWholeFile(home_ / "data/letter.vlt", "Dear Ann");
    NextChooser(Choose(home_ / "data/letter.vlt"));
    NextBox(Answer(QMessageBox::Ok));
    Open([&] {
        Click(kButtonAdd);
        EXPECT_EQ(Entries(), paths);
    });
    ASSERT_EQ(Boxes().size(), 1U);
    EXPECT_EQ(Boxes()[0].icon, QMessageBox::Warning);
    EXPECT_EQ(Boxes()[0].caption, home_ / "data/letter.vlt");
    EXPECT_EQ(Boxes()[0].buttons, (std::vector<std::string>{"OK"}));
}

TEST_F(ControlsInWindow, RemoveTakesTheSelectedOneAndSelectsTheOneBeforeIt)
{
    const std::vector<std::string> paths = SaveDatabases(5);
    Open([&] {
        ClickEntry(3);
        Click(kButtonRemove);
        EXPECT_EQ(Entries(), (std::vector<std::string>{paths[0], paths[1], paths[2], paths[4]}));
        EXPECT_EQ(SelectedRow(), 2);
        EXPECT_EQ(Model(kListDatabases).selected, 2);
        Click(kButtonRemove);
        EXPECT_EQ(Entries(), (std::vector<std::string>{paths[0], paths[1], paths[4]}));
        EXPECT_EQ(SelectedRow(), 1);
    });
}

TEST_F(ControlsInWindow, RemovingTheFirstOfSeveralSelectsTheNewFirst)
{
    const std::vector<std::string> paths = SaveDatabases(4);
    Open([&] {
        EXPECT_EQ(SelectedRow(), 0);
        for (size_t gone = 1; gone < paths.size(); ++gone) {
            Click(kButtonRemove);
            EXPECT_EQ(Entries(), (std::vector<std::string>{paths.begin() + static_cast<long>(gone), paths.end()}));
            EXPECT_EQ(SelectedRow(), 0);
            EXPECT_EQ(The<QListWidget>(kListDatabases)->selectedItems().size(), 1);
            EXPECT_TRUE(IsUsable(kButtonApply));
        }
    });
    EXPECT_EQ(Slots(), paths) << "cancelled, so not saved";
}

TEST_F(ControlsInWindow, RemovingTheLastOneLeavesNothingToRemoveAndOkSavesNone)
{
    SaveDatabases(1);
    Open([&] {
        Click(kButtonRemove);
        EXPECT_TRUE(Entries().empty());
        EXPECT_EQ(SelectedRow(), -1);
        EXPECT_FALSE(IsUsable(kButtonRemove));
        EXPECT_TRUE(IsUsable(kButtonAdd));
        EXPECT_TRUE(QTest::qWaitFor([&] { return !Widget(kTextSelectedStatus)->isVisible(); }));
        Click(kButtonOk);
    });
    EXPECT_TRUE(Slots().empty());
}

TEST_F(ControlsInWindow, ProposeMailAndAddressBookWithoutSavedDatabasesAndApplyCanBePressedAtOnce)
{
    SetIni("MailFile", "mail.vlt");
    const std::vector<std::string> proposed = {MakeDatabase("mail.vlt"), MakeDatabase("names.vlt")};
    Open([&] {
        EXPECT_EQ(Entries(), proposed);
        EXPECT_EQ(SelectedRow(), 0);
        EXPECT_EQ(Text(kTextSelectedStatus), "<193><157>");
        EXPECT_TRUE(IsUsable(kButtonApply));
        Click(kButtonApply);
        EXPECT_EQ(Slots(), proposed);
        EXPECT_FALSE(IsUsable(kButtonApply));
        EXPECT_TRUE(Window().isVisible());
    });
    Open([&] { EXPECT_EQ(Entries(), proposed) << "now saved"; });
}

TEST_F(ControlsInWindow, ProposeNothingThatIsNotThere)
{
    SetIni("MailFile", "mail.vlt");
    const std::string names = MakeDatabase("names.vlt");
    Open([&] { EXPECT_EQ(Entries(), std::vector<std::string>{names}); });
}

TEST_F(ControlsInWindow, AddIsDisabledWhenTheListIsFull)
{
    SaveDatabases(14);
    const std::string last = MakeDatabase("last.vlt");
    NextChooser(Choose(last));
    Open([&] {
        EXPECT_TRUE(IsUsable(kButtonAdd));
        Click(kButtonAdd);
        EXPECT_EQ(Entries().size(), 15U);
        EXPECT_FALSE(IsUsable(kButtonAdd));
        Click(kButtonRemove);
        EXPECT_TRUE(IsUsable(kButtonAdd));
        Click(kButtonCancel);
    });
    SetDbPath(14, last.c_str());
    Open([&] { EXPECT_FALSE(IsUsable(kButtonAdd)) << "full as it opens"; });
}

TEST_F(ControlsInWindow, AddTellsWhenTheListTakesNoMore)
{
    SaveDatabases(1);
    NextChooser(Choose(MakeDatabase("one-too-many.vlt")));
    NextBox(Answer(QMessageBox::Ok));
    Open([&] {
        while (UIXListboxAddItem(Handle(), kListDatabases, "x") >= 0)
            continue;
        Click(kButtonAdd);
    });
    ASSERT_EQ(Boxes().size(), 1U);
    EXPECT_EQ(Boxes()[0].text, "<261>");
    EXPECT_EQ(Boxes()[0].caption, "<260>");
    EXPECT_EQ(Boxes()[0].icon, QMessageBox::NoIcon);
    EXPECT_EQ(Boxes()[0].buttons, (std::vector<std::string>{"OK"}));
}

TEST_F(ControlsInWindow, TheFrequencyTakesTwoCharacters)
{
    SaveDatabases(1);
    Open([&] {
        EXPECT_EQ(The<QLineEdit>(kEditFrequency)->text(), "5");
        Type(kEditFrequency, "123");
        EXPECT_EQ(The<QLineEdit>(kEditFrequency)->text(), "12");
        EXPECT_EQ(Model(kEditFrequency).text, "12");
        EXPECT_TRUE(IsUsable(kButtonApply));
        Key(Qt::Key_Home);
        Key(Qt::Key_Delete);  // what is typed in the middle leaves the cursor where it is
        QTest::keyClicks(Widget(kEditFrequency), "9");
        EXPECT_EQ(Model(kEditFrequency).text, "92");
    });
}

TEST_F(ControlsInWindow, ApplySavesAndStaysOpen)
{
    SaveDatabases(1);
    const long result = Open([&] {
        Click(kCheckIdle);
        Click(kButtonApply);
        EXPECT_TRUE(Window().isVisible());
        EXPECT_FALSE(IsUsable(kButtonApply));
        EXPECT_TRUE(IsIdleIndexing());
        Click(kButtonCancel);
    });
    EXPECT_EQ(result, kButtonCancel);
    EXPECT_TRUE(IsIdleIndexing());
    EXPECT_EQ(bStopAndReset, 0);
}

TEST_F(ControlsInWindow, ApplyingTheReindexBoxResetsTheIndexAndUnchecksIt)
{
    SaveDatabases(1);
    const TIMEDATE since = SomeTime(9);
    SetDbTimestamp(0, &since, nullptr, 0, 0, 0);
    Open([&] {
        Click(kCheckReindex);
        EXPECT_EQ(bStopAndReset, 0) << "not before Apply";
        Click(kButtonApply);
        EXPECT_EQ(bStopAndReset, 1);
        EXPECT_EQ(Ini("GDSTimestamp"), "");
        EXPECT_FALSE(The<QCheckBox>(kCheckReindex)->isChecked());
        EXPECT_FALSE(IsUsable(kButtonApply));
        EXPECT_TRUE(Window().isVisible());
    });
}

TEST_F(ControlsInWindow, TheReindexBoxResetsNothingWhenIndexingIsSwitchedOffWithIt)
{
    SaveDatabases(1);
    Open([&] {
        Click(kCheckReindex);
        Click(kCheckEnabled);
        Click(kButtonApply);
    });
    EXPECT_FALSE(IsEnabled());
    EXPECT_EQ(bStopAndReset, 0);
}

TEST_F(ControlsInWindow, TheReindexBoxAloneEnablesApply)
{
    SaveDatabases(1);
    Open([&] {
        Click(kCheckReindex);
        EXPECT_TRUE(IsUsable(kButtonApply));
        Click(kCheckReindex);
        EXPECT_FALSE(IsUsable(kButtonApply));
    });
}

TEST_F(ControlsInWindow, WhatTheAdministratorLocksIsNotThere)
{
    SaveDatabases(1);
    SetIni("AdminGDSLock", "1");
    Open([&] {
        EXPECT_FALSE(Widget(kButtonAdd)->isVisible());
        EXPECT_FALSE(Widget(kButtonRemove)->isVisible());
        EXPECT_TRUE(IsUsable(kListDatabases));
        Key(Qt::Key_A, Qt::AltModifier);  // nor can its letter be pressed
    });
}

}  // namespace
