// tests/dialog/order_test.cpp: the order in which the dialog is filled, enabled, compared and saved.
#include <gmock/gmock.h>

#include "dialog/settings_dialog.h"
#include "settings/progress.h"
#include "tests/dialog/dialog_fixture.h"
#include "tests/dialog/window_record.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using Texts = std::vector<std::string>;

class DialogOrder : public DialogFixture {
protected:
    DialogOrder() { SetIni("GDSIndexEnabled", "1"); }
};

// The changes as they are, those of the three status lines together as one "status".
Texts WithStatusAsOne(const Texts& changes)
{
    Texts shortened;
    for (const std::string& change : changes) {
        const bool status = change.find(" 3386 ") != std::string::npos || change.find(" 3387 ") != std::string::npos ||
                            change.find(" 3400 ") != std::string::npos;
        if (!status)
            shortened.push_back(change);
        else if (shortened.empty() || shortened.back() != "status")
            shortened.emplace_back("status");
    }
    return shortened;
}

constexpr int kInOrderOfEnabling[] = {3388, 3389, 3392, 3391, 3390, 3383, 3395, 3393, 3394, 3396, 3384, 3385};

Texts Enabling(bool enable)
{
    Texts changes;
    for (const int id : kInOrderOfEnabling)
        changes.push_back("enable " + std::to_string(id) + (enable ? " 1" : " 0"));
    return changes;
}

TEST_F(DialogOrder, ItemsAreEnabledAndDisabledByTheirTableAndApplyAfterThem)
{
    SaveDatabases(1);
    Inspect([](pavex::Dialog& dialog) {
        for (const bool enable : {false, true}) {
            WindowRecord record;
            EnableDialogItems(dialog.Window(), enable);
            Texts expected = Enabling(enable);
            expected.emplace_back("enable 3397 0");
            EXPECT_THAT(record.changes, ElementsAreArray(expected));
        }
        CheckDlgButton(dialog.Window(), kCheckReindex, 1);
        WindowRecord record;
        EnableDialogItems(dialog.Window(), false);
        EXPECT_EQ(record.changes.back(), "enable 3397 1");  // by the rule, not by what was asked for
    });
}

TEST_F(DialogOrder, ControlsAreShownByTheirTable)
{
    SaveDatabases(1);
    Inspect([](pavex::Dialog& dialog) {
        for (const bool show : {false, true}) {
            WindowRecord record;
            ShowControls(dialog.Window(), show);
            Texts expected;
            for (const int id :
                 {3382, 3388, 3389, 3392, 3390, 3391, 3383, 3395, 3387, 3386, 3400, 3394, 3396, 3393, 3398, 3384, 3385})
                expected.push_back("show " + std::to_string(id) + (show ? " 5" : " 0"));
            expected.emplace_back("enable 3397 0");
            EXPECT_THAT(record.changes, ElementsAreArray(expected));
        }
    });
}

TEST_F(DialogOrder, TheDialogIsFilledStepByStep)
{
    const Texts paths = SaveDatabases(2);
    SetIni("GDSFreqMinutes", "42");
    WindowRecord record;
    Inspect([](pavex::Dialog&) {});
    Texts expected = {"check 3382 1",    "add 3383 " + paths[0], "add 3383 " + paths[1], "enable 3397 0",
                      "send 3383 390 0", "check 3388 0",         "check 3392 0",         "check 3389 0",
                      "check 3391 0",    "check 3390 1",         "text 3395 42",         "send 3395 1045 2"};
    for (const std::string& change : Enabling(true))
        expected.push_back(change);
    for (const char* change :
         {"enable 3397 0", "text 3399 <162>", "enable 3384 1", "enable 3385 1", "status", "timer 194 1000"})
        expected.emplace_back(change);
    EXPECT_THAT(WithStatusAsOne(record.changes), ElementsAreArray(expected));
}

TEST_F(DialogOrder, TheFixedListsButtonsAreHiddenBeforeAnythingElse)
{
    SetIni("AdminGDSLock", "1");
    WindowRecord record;
    Inspect([](pavex::Dialog&) {});
    ASSERT_GE(record.changes.size(), 3U);
    EXPECT_THAT(Texts(record.changes.begin(), record.changes.begin() + 3),
                ElementsAre("show 3384 0", "show 3385 0", "check 3382 1"));
}

TEST_F(DialogOrder, MailIsProposedBeforeTheAddressBookAndEachTimeTheFirstIsSelected)
{
    SetIni("MailFile", "mail.vlt");
    const std::string mail = MakeDatabase("mail.vlt");
    const std::string names = MakeDatabase("names.vlt");
    WindowRecord record;
    Inspect([](pavex::Dialog&) {});
    ASSERT_GE(record.changes.size(), 4U);
    EXPECT_THAT(Texts(record.changes.begin(), record.changes.begin() + 4),
                ElementsAre("check 3382 1", "add 3383 " + mail, "send 3383 390 0", "add 3383 " + names));
}

TEST_F(DialogOrder, ControlsAreComparedUpToTheFirstThatDiffers)
{
    SaveDatabases(1);
    const std::vector<int> boxes = {3382, 3388, 3389, 3392, 3390, 3391};
    Inspect([&](pavex::Dialog& dialog) {
        for (size_t differing = 0; differing <= boxes.size(); ++differing) {
            std::vector<int> expected = boxes;
            if (differing < boxes.size()) {
                expected.resize(differing + 1);
                dialog.Find(boxes[differing])->checked ^= 1U;
            } else {
                expected.push_back(3395);
            }
            WindowRecord record;
            EXPECT_EQ(IsSomethingDifferent(dialog.Window()), differing < boxes.size());
            EXPECT_EQ(record.read, expected);
            if (differing < boxes.size())
                dialog.Find(boxes[differing])->checked ^= 1U;
        }
    });
}

TEST_F(DialogOrder, DatabasesAreSavedThenTheOptionsThenProgressIsForgotten)
{
    SetIni("GDSIndexEnabled", "0");
    SetIni("GoogleSkipLegal", "1");
    SaveDatabases(1);
    const std::string added = MakeDatabase("added.vlt");
    WindowRecord record;
    const DialogRun run =
        Drive({pavex::SetCheckAction(kCheckEnabled, true), pavex::AddFileAction(kButtonAdd, kListDatabases, added),
               pavex::SetCheckAction(kCheckEncrypted, true), pavex::SetCheckAction(kCheckDrafts, true),
               pavex::SetCheckAction(kCheckIdle, true), pavex::SetCheckAction(kCheckDiscussion, true),
               pavex::SetCheckAction(kCheckHistory, false), pavex::TypeTextAction(kEditFrequency, "10"),
               pavex::PressAction(kButtonOk)},
              pavex::BoxAnswers::Yes);
    ASSERT_EQ(run.error, "");
    Texts expected;
    for (int slot = 1; slot < kProgressSlots - 1; ++slot) {
        const std::string number = std::to_string(slot);
        expected.push_back("GDSFilePath" + number + "=");
        expected.push_back("GDSTimestamp" + number + "=");
        if (slot == 1)
            expected.push_back("GDSFilePath1=" + added);
    }
    for (const char* option : {"GDSIndexEnabled=1", "GDSIndexEncrypted=1", "GDSIndexDrafts=1", "GDSIndexOnIdle=1",
                               "GDSIndexDiscussion=1", "GDSNoIndexHistory=1", "GDSFreqMinutes=10"})
        expected.emplace_back(option);
    for (int slot = 0; slot < kProgressSlots; ++slot)
        expected.push_back("GDSTimestamp" + (slot == 0 ? "" : std::to_string(slot)) + "=");
    EXPECT_THAT(record.written, ElementsAreArray(expected));
}

TEST_F(DialogOrder, ApplyUnchecksReindexThenDisablesItselfThenSettlesTheListsButtons)
{
    SaveDatabases(1);
    Inspect([](pavex::Dialog& dialog) {
        std::string error;
        ASSERT_TRUE(dialog.Toggle(kCheckReindex, &error)) << error;
        WindowRecord record;
        ASSERT_TRUE(dialog.Press(kButtonApply, &error)) << error;
        EXPECT_THAT(record.changes, ElementsAre("check 3393 0", "enable 3397 0", "enable 3384 1", "enable 3385 1"));
    });
}

}  // namespace
