// tests/dialog/limits_test.cpp: the longest paths and texts, and a dialog that is opened again.
#include <gmock/gmock.h>

#include <filesystem>

#include "addin/lifecycle.h"
#include "client/foundation/host.h"
#include "client/store/charset.h"
#include "client/store/host.h"
#include "client/windows/window_table.h"
#include "dialog/settings_dialog.h"
#include "dialog/status_display.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "strings/string_resources.h"
#include "tests/dialog/dialog_fixture.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;

std::string Times(const std::string& text, int count)
{
    std::string repeated;
    while (count-- > 0)
        repeated += text;
    return repeated;
}

class DialogLimits : public DialogFixture {
protected:
    DialogLimits() { SetIni("GDSIndexEnabled", "1"); }
    // A path in the data directory with so many bytes.
    std::string PathOfBytes(size_t bytes) const
    {
        const std::string folder = home_ / "data/";
        return folder + std::string(bytes - folder.size() - 4, 'p') + ".vlt";
    }
};

TEST_F(DialogLimits, ASavedPathOf256BytesIsListedWholeAndKeepsItsSlotAndProgress)
{
    const std::string path = PathOfBytes(256);
    const TIMEDATE since = SomeTime(9);
    SetDbPath(2, path.c_str());
    SetDbTimestamp(2, &since, nullptr, 0, 0, 0);
    const std::string progress = Ini("GDSTimestamp2");
    const DialogRun run = Drive({pavex::ShowJsonAction(), pavex::SetCheckAction(kCheckIdle, true),
                                 pavex::PressAction(kButtonApply), pavex::ShowJsonAction()});
    ASSERT_EQ(run.error, "");
    EXPECT_EQ(Items(run.shown.at(0)), json({path}));
    EXPECT_FALSE(IsEnabledIn(run.shown.at(0), kButtonApply));  // the path is known: nothing differs
    EXPECT_TRUE(TextIn(run.shown.at(0), kTextSelectedStatus).starts_with("<193><108>"));
    EXPECT_THAT(Slots(), ElementsAre("", "", path));
    EXPECT_EQ(Ini("GDSTimestamp2"), progress);
    EXPECT_FALSE(IsEnabledIn(run.shown.at(1), kButtonApply));
}

TEST_F(DialogLimits, TheActivityLineTakesAPathOf256Bytes)
{
    const std::string path = PathOfBytes(256);
    SetDbPath(0, path.c_str());
    GlobalContext.inProgress = 1;
    Inspect([&](pavex::Dialog& dialog) { EXPECT_EQ(dialog.Find(kTextActivityStatus)->text, "<202>" + path); });
}

TEST_F(DialogLimits, APathOf255BytesIsAddedAndALongerOneIsNot)
{
    const std::string longest = MakeDatabase(std::filesystem::path(PathOfBytes(255)).filename().string());
    const std::string tooLong = MakeDatabase(std::filesystem::path(PathOfBytes(256)).filename().string());
    ASSERT_EQ(longest.size(), 255U);
    const DialogRun added =
        Drive({pavex::AddFileAction(kButtonAdd, kListDatabases, longest), pavex::PressAction(kButtonOk)});
    EXPECT_EQ(added.error, "");
    EXPECT_THAT(Slots(), ElementsAre(longest));
    const DialogRun refused = Drive({pavex::AddFileAction(kButtonAdd, kListDatabases, tooLong)});
    EXPECT_NE(refused.error, "");
    EXPECT_THAT(Slots(), ElementsAre(longest));
}

TEST_F(DialogLimits, PathsThatDifferInLetterCaseAreTwoDatabases)
{
    const std::string lower = MakeDatabase("mail.vlt");
    const std::string upper = MakeDatabase("Mail.vlt");
    const DialogRun run = Drive({pavex::AddFileAction(kButtonAdd, kListDatabases, lower),
                                 pavex::AddFileAction(kButtonAdd, kListDatabases, upper), pavex::ShowJsonAction(),
                                 pavex::PressAction(kButtonOk)});
    ASSERT_EQ(run.error, "");
    EXPECT_EQ(Items(run.shown.at(0)), json({lower, upper}));
    EXPECT_THAT(Slots(), ElementsAre(lower, upper));
}

TEST_F(DialogLimits, AListedPathInOtherLettersThanTheSavedOneIsADifference)
{
    SetDbPath(0, "/Mail.vlt");
    Inspect([](pavex::Dialog& dialog) {
        EXPECT_FALSE(IsSomethingDifferent(dialog.Window()));
        dialog.Find(kListDatabases)->entries[0] = "/mail.vlt";
        EXPECT_TRUE(IsSomethingDifferent(dialog.Window()));
        PutStatus(dialog.Window());
        EXPECT_EQ(dialog.Find(kTextSelectedStatus)->text, "<193><157>");
    });
}

TEST_F(DialogLimits, EighteenBytesOfTheFrequencyAreRead)
{
    SaveDatabases(1);
    Inspect([](pavex::Dialog& dialog) {
        UIXSetDlgItemText(dialog.Window(), kEditFrequency, "000000000000000005");
        EXPECT_FALSE(IsSomethingDifferent(dialog.Window()));
        UIXSetDlgItemText(dialog.Window(), kEditFrequency, "0000000000000000005");
        EXPECT_TRUE(IsSomethingDifferent(dialog.Window()));  // what is read ends before the 5
    });
}

// The fixture's texts with one replaced.
class LongTexts : public DialogLimits {
protected:
    LongTexts() { SaveDatabases(1); }
    ~LongTexts() override
    {
        for (const unsigned int id : replaced_)
            StringResourceMap::GetInstance()->Load(id);
    }
    void Replace(unsigned int id, const std::string& text)
    {
        const std::string bundle = home_ / ("bundle" + std::to_string(id) + "." + std::to_string(replaced_.size()));
        std::filesystem::create_directories(bundle + "/en.lproj");
        WriteWholeFile(bundle + "/en.lproj/libtorvik.strings", "\"" + std::to_string(id) + "\" = \"" + text + "\";\n");
        pavex::SetAddInBundle(bundle);
        replaced_.push_back(id);
        StringResourceMap::GetInstance()->Load(id);
        pavex::SetAddInBundle(home_ / "bundle");
    }
    std::string Shown(int id)
    {
        std::string text;
        Inspect([&](pavex::Dialog& dialog) { text = pavex::Utf8FromScs(dialog.Find(id)->text); });
        return text;
    }

private:
    std::vector<unsigned int> replaced_;
};

TEST_F(LongTexts, AStateIsCutAfter255BytesBetweenCharacters)
{
    Replace(107, std::string(400, 'x'));
    EXPECT_EQ(Shown(kTextSelectedStatus), "<193>" + std::string(255, 'x'));
    EXPECT_EQ(Shown(kTextOverallStatus), "<203>" + std::string(255, 'x'));
    Replace(107, Times("\xC3\xA4", 200));
    EXPECT_EQ(Shown(kTextSelectedStatus), "<193>" + Times("\xC3\xA4", 127));
}

TEST_F(LongTexts, ATimeIsCutWithWhatStandsBeforeItAfter255Bytes)
{
    const TIMEDATE since = SomeTime(9);
    SetDbTimestamp(0, &since, nullptr, 0, 0, 0);
    Replace(108, std::string(251, 'x'));
    EXPECT_EQ(Shown(kTextSelectedStatus), "<193>" + std::string(251, 'x') + "2007");
    Replace(108, std::string(255, 'x'));
    EXPECT_EQ(Shown(kTextSelectedStatus), "<193>" + std::string(255, 'x'));
}

TEST_F(LongTexts, AProgressIsCutAfter255Bytes)
{
    Replace(110, std::string(250, 'x') + "%d/%d/%d");
    GlobalContext.resumed = 1;
    GlobalContext.processed = 30;
    GlobalContext.total = 120;
    EXPECT_EQ(Shown(kTextOverallStatus), "<203>" + std::string(250, 'x') + "30/12");
}

TEST_F(LongTexts, EachLineIsCutAfter767BytesBetweenCharacters)
{
    GlobalContext.inProgress = 1;
    const std::pair<unsigned int, int> leads[] = {
        {193, kTextSelectedStatus}, {202, kTextActivityStatus}, {203, kTextOverallStatus}};
    for (const auto& [lead, line] : leads) {
        Replace(lead, std::string(1000, 'y'));
        EXPECT_EQ(Shown(line), std::string(767, 'y')) << lead;
        Replace(lead, Times("\xC3\xA4", 500));
        EXPECT_EQ(Shown(line), Times("\xC3\xA4", 383)) << lead;
        Replace(lead, std::string(764, 'y'));
        EXPECT_EQ(Shown(line).size(), 767U) << lead;
        EXPECT_EQ(Shown(line).substr(0, 764), std::string(764, 'y')) << lead;
    }
}

TEST_F(LongTexts, TheInstructionsAreCutAfter1023Bytes)
{
    Replace(162, std::string(2000, 'z'));
    EXPECT_EQ(Shown(kTextInstructions), std::string(1023, 'z'));
}

using DialogAgain = DialogLimits;

TEST_F(DialogAgain, AfterASaveShowsWhatWasSaved)
{
    const std::vector<std::string> saved = SaveDatabases(1);
    const std::string added = MakeDatabase("added.vlt");
    const int handles = pavex::OpenHandles();
    Drive({pavex::SetCheckAction(kCheckIdle, true), pavex::TypeTextAction(kEditFrequency, "7"),
           pavex::AddFileAction(kButtonAdd, kListDatabases, added), pavex::PressAction(kButtonOk)});
    const json controls = Drive({pavex::ShowJsonAction()}).shown.at(0);
    EXPECT_TRUE(IsCheckedIn(controls, kCheckIdle));
    EXPECT_EQ(TextIn(controls, kEditFrequency), "7");
    EXPECT_EQ(Items(controls), json({saved[0], added}));
    EXPECT_FALSE(IsEnabledIn(controls, kButtonApply));
    EXPECT_EQ(pavex::OpenHandles(), handles);
}

TEST_F(DialogAgain, AfterACancelShowsWhatWasSavedBefore)
{
    const std::vector<std::string> saved = SaveDatabases(2);
    Drive({pavex::SetCheckAction(kCheckIdle, true), pavex::SetCheckAction(kCheckReindex, true),
           pavex::RemoveFileAction(kButtonRemove, kListDatabases, saved[1]), pavex::PressAction(kButtonCancel)});
    const json controls = Drive({pavex::ShowJsonAction()}).shown.at(0);
    EXPECT_FALSE(IsCheckedIn(controls, kCheckIdle));
    EXPECT_FALSE(IsCheckedIn(controls, kCheckReindex));
    EXPECT_EQ(Items(controls), json(saved));
    EXPECT_FALSE(IsEnabledIn(controls, kButtonApply));
}

TEST_F(DialogAgain, AClosedDialogTakesNoMoreMessagesAndTheNextOneDoes)
{
    SaveDatabases(1);
    unsigned long closed = 0;
    Inspect([&](pavex::Dialog& dialog) { closed = dialog.Window(); });
    EXPECT_EQ(DlgProc(closed, kMessageTimer, 194, 0), 0);
    Inspect([](pavex::Dialog& dialog) {
        ASSERT_EQ(dialog.Timers().size(), 1U);
        EXPECT_EQ(DlgProc(dialog.Window(), kMessageCommand, kButtonCancel, 0), 1);
        EXPECT_EQ(dialog.Result(), 2);
    });
}

// What is different right after the add-in was registered.
using DialogAfterRegistration = DialogLimits;

TEST_F(DialogAfterRegistration, TheReindexBoxStillDecides)
{
    SaveDatabases(1);
    SetJustRegistered(1);
    const DialogRun run = Drive({pavex::SetCheckAction(kCheckEncrypted, true),
                                 pavex::SetCheckAction(kCheckReindex, true), pavex::PressAction(kButtonOk)});
    EXPECT_EQ(run.boxes.size(), 0U);
    EXPECT_EQ(bStopAndReset, 1);
    EXPECT_EQ(JustRegistered(), 0U);
}

TEST_F(DialogAfterRegistration, ASaveThatWidensNothingUsesItUpToo)
{
    SaveDatabases(1);
    SetJustRegistered(1);
    Drive({pavex::PressAction(kButtonOk)});
    EXPECT_EQ(JustRegistered(), 0U);
    EXPECT_EQ(bStopAndReset, 0);
}

TEST_F(DialogAfterRegistration, TheSecondSaveAsksAgain)
{
    SaveDatabases(1);
    SetJustRegistered(1);
    const DialogRun run = Drive({pavex::SetCheckAction(kCheckEncrypted, true), pavex::PressAction(kButtonApply),
                                 pavex::SetCheckAction(kCheckEncrypted, false), pavex::PressAction(kButtonApply)},
                                pavex::BoxAnswers::Yes);
    ASSERT_EQ(run.boxes.size(), 1U);
    EXPECT_EQ(run.boxes[0].box.text, "<149>");
    EXPECT_EQ(bStopAndReset, 1);
}

TEST_F(DialogAfterRegistration, ACancelledDialogLeavesItForTheNext)
{
    SaveDatabases(1);
    SetJustRegistered(1);
    Drive({pavex::SetCheckAction(kCheckEncrypted, true), pavex::PressAction(kButtonCancel)});
    EXPECT_EQ(JustRegistered(), 1U);
}

}  // namespace
