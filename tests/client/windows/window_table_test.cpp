// tests/client/windows/window_table_test.cpp
#include "client/windows/window_table.h"

#include <gtest/gtest.h>

#include "tests/client/windows/recording_procedure.h"

namespace {

TEST(WindowTable, TellsDialogsFromControls)
{
    RecordedDialog dialog;
    const unsigned long control = GetDlgItem(dialog.Window(), 3383);
    EXPECT_EQ(pavex::FindDialog(dialog.Window()), &dialog);
    EXPECT_EQ(pavex::FindControl(control), dialog.Find(3383));
    EXPECT_EQ(pavex::FindDialog(control), nullptr);
    EXPECT_EQ(pavex::FindControl(dialog.Window()), nullptr);
}

TEST(WindowTable, ForgetsAWindowThatIsGone)
{
    unsigned long window = 0;
    unsigned long control = 0;
    {
        RecordedDialog dialog;
        window = dialog.Window();
        control = GetDlgItem(window, 3383);
    }
    EXPECT_EQ(pavex::FindDialog(window), nullptr);
    EXPECT_EQ(pavex::FindControl(control), nullptr);
}

TEST(WindowTable, KeepsHandlesWithinSixteenBitsHoweverManyDialogsThereWere)
{
    for (int i = 0; i < 4000; ++i) {  // 22 handles each: more than 65535 in all
        RecordedDialog dialog;
        ASSERT_GT(dialog.Window(), 0U);
        ASSERT_LT(dialog.Window(), 65536U);
        ASSERT_EQ(pavex::FindDialog(dialog.Window()), &dialog);
    }
}

TEST(WindowTable, HasNoHandleLeftWhenAllAreInUse)
{
    std::vector<unsigned long> handles;
    while (const unsigned long handle = pavex::RegisterWindow(nullptr, 1))
        handles.push_back(handle);
    EXPECT_EQ(handles.size(), 65535U);
    for (const unsigned long handle : handles)
        pavex::UnregisterWindow(handle);
}

}  // namespace
