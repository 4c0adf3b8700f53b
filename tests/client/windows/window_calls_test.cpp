// tests/client/windows/window_calls_test.cpp
#include <climits>

#include <gmock/gmock.h>

#include "tests/client/windows/recording_procedure.h"

namespace {

TEST(WindowCalls, AnswerForWindowsAndControlsThatAreNotThere)
{
    for (const unsigned long window : {0UL, 77777UL, ULONG_MAX}) {
        char text[4] = "xyz";
        EXPECT_EQ(GetDlgItem(window, 3383), 0U);
        CheckDlgButton(window, 3382, 1);
        EXPECT_EQ(IsDlgButtonChecked(window, 3382), 0U);
        EXPECT_FALSE(EnableWindow(window, true));
        EXPECT_EQ(SetTimer(window, 194, 1000, nullptr), 0U);
        EndDialog(window, 1);
        EXPECT_EQ(GetDlgItemText(window, 3395, text, sizeof text), 0U);
        EXPECT_STREQ(text, "");
        UIXSetDlgItemText(window, 3395, "7");
        EXPECT_FALSE(UIXIsWindowVisible(window));
        WINShowWindow(window, kShowVisible);
        EXPECT_EQ(UIXListboxFindExactString(window, 3383, "a"), -1);
        EXPECT_EQ(UIXListboxAddItem(window, 3383, "a"), -1);
    }
    RecordedDialog dialog;
    EXPECT_EQ(GetDlgItem(dialog.Window(), 4000), 0U);
    EXPECT_EQ(IsDlgButtonChecked(dialog.Window(), 3383), 0U);  // a list is no check box
    EXPECT_EQ(UIXListboxAddItem(dialog.Window(), 3395, "a"), -1);
    EXPECT_EQ(UIXListboxAddItem(dialog.Window(), 3383, nullptr), -1);
}

TEST(WindowCalls, EnableAndShowControls)
{
    RecordedDialog dialog;
    const unsigned long apply = GetDlgItem(dialog.Window(), 3397);
    EXPECT_TRUE(EnableWindow(apply, false));
    EXPECT_FALSE(EnableWindow(apply, false));
    EXPECT_FALSE(dialog.Find(3397)->enabled);
    EXPECT_TRUE(UIXIsWindowVisible(apply));
    WINShowWindow(apply, kShowHidden);
    EXPECT_FALSE(UIXIsWindowVisible(apply));
    WINShowWindow(apply, kShowVisible);
    EXPECT_TRUE(UIXIsWindowVisible(apply));
}

TEST(WindowCalls, CutTextBetweenCharactersToFitTheBuffer)
{
    RecordedDialog dialog;
    UIXSetDlgItemText(dialog.Window(), 3395, "a\xC3\xA4");
    char text[3] = "zz";
    EXPECT_EQ(GetDlgItemText(dialog.Window(), 3395, text, sizeof text), 1U);
    EXPECT_STREQ(text, "a");
    EXPECT_EQ(GetDlgItemText(dialog.Window(), 3395, text, 0), 0U);
    UIXSetDlgItemText(dialog.Window(), 3395, nullptr);
    EXPECT_EQ(dialog.Find(3395)->text, "");
}

TEST(WindowCalls, FindListEntriesExactlyAndAppendNewOnes)
{
    RecordedDialog dialog;
    EXPECT_EQ(UIXListboxAddItem(dialog.Window(), 3383, "/a.vlt"), 0);
    EXPECT_EQ(UIXListboxAddItem(dialog.Window(), 3383, "/b.vlt"), 1);
    EXPECT_EQ(UIXListboxFindExactString(dialog.Window(), 3383, "/b.vlt"), 1);
    EXPECT_EQ(UIXListboxFindExactString(dialog.Window(), 3383, "/B.vlt"), -1);
    EXPECT_EQ(UIXListboxFindExactString(dialog.Window(), 3383, "/b.vl"), -1);
}

TEST(WindowCalls, RefuseListEntriesPastTheLimitsOfTheList)
{
    RecordedDialog dialog;
    EXPECT_EQ(UIXListboxAddItem(dialog.Window(), 3383, std::string(257, 'a').c_str()), -1);
    for (long i = 0; i < 4096; ++i)
        ASSERT_EQ(UIXListboxAddItem(dialog.Window(), 3383, std::to_string(i).c_str()), i);
    EXPECT_EQ(UIXListboxAddItem(dialog.Window(), 3383, "one more"), -1);
}

}  // namespace
