// tests/client/windows/dialog_test.cpp
#include "client/windows/dialog.h"

#include <gmock/gmock.h>

#include "client/windows/command_handles.h"
#include "tests/client/windows/recording_procedure.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Dialog, TogglesACheckBoxBeforeTheProcedureHearsOfIt)
{
    RecordedDialog dialog;
    unsigned int seen = 99;
    onMessage = [&](unsigned long window, unsigned int, unsigned long) {
        seen = IsDlgButtonChecked(window, 3388);
        return 0;
    };
    std::string error;
    EXPECT_TRUE(dialog.Toggle(3388, &error));
    EXPECT_EQ(seen, 1U);
    EXPECT_TRUE(dialog.Toggle(3388, &error));
    EXPECT_EQ(seen, 0U);
    EXPECT_THAT(sentMessages, ElementsAre(SentMessage{273, 3388}, SentMessage{273, 3388}));
}

TEST(Dialog, SendsWhatHappenedAboveTheControlsId)
{
    RecordedDialog dialog;
    UIXListboxAddItem(dialog.Window(), 3383, "a.vlt");
    std::string error;
    EXPECT_TRUE(dialog.Press(3384, &error));
    EXPECT_TRUE(dialog.Select(3383, 0, &error));
    EXPECT_TRUE(dialog.Type(3395, "7", &error));
    EXPECT_TRUE(dialog.PressDefault(&error));
    EXPECT_THAT(sentMessages,
                ElementsAre(SentMessage{273, 3384}, SentMessage{273, 1UL << 16 | 3383},
                            SentMessage{273, 0x300UL << 16 | 3395}, SentMessage{273, pavex::CommandHandleOf(1)}));
}

TEST(Dialog, RefusesWhatAUserCouldNotDoAndChangesNothing)
{
    RecordedDialog dialog;
    UIXListboxAddItem(dialog.Window(), 3383, "a.vlt");
    WINShowWindow(GetDlgItem(dialog.Window(), 3384), kShowHidden);
    EnableWindow(GetDlgItem(dialog.Window(), 3388), false);
    std::vector<std::string> errors;
    const auto refused = [&](auto action) {
        std::string error;
        EXPECT_FALSE(action(&error));
        errors.push_back(error);
    };
    refused([&](std::string* error) { return dialog.Press(3384, error); });
    refused([&](std::string* error) { return dialog.Toggle(3388, error); });
    refused([&](std::string* error) { return dialog.Press(3388, error); });
    refused([&](std::string* error) { return dialog.Toggle(9999, error); });
    refused([&](std::string* error) { return dialog.Select(3383, 1, error); });
    refused([&](std::string* error) { return dialog.Select(3383, -1, error); });
    EXPECT_THAT(errors,
                ElementsAre("control 3384 (add) is hidden", "control 3388 (encrypted) is disabled",
                            "control 3388 (encrypted) is a check, not a button", "the dialog has no control 9999",
                            "control 3383 (databases) has no entry 1; it has 1",
                            "control 3383 (databases) has no entry -1; it has 1"));
    EXPECT_THAT(sentMessages, IsEmpty());
    EXPECT_EQ(dialog.Find(3388)->checked, 0U);
    EXPECT_EQ(dialog.Find(3383)->selected, -1);
}

TEST(Dialog, RefusesTypingMoreThanTheLimitOfTheField)
{
    RecordedDialog dialog;
    SendMessage(GetDlgItem(dialog.Window(), 3395), kEditLimitText, 2, 0);
    std::string error;
    EXPECT_TRUE(dialog.Type(3395, "\xC3\xA4\xC3\xB6", &error));  // two characters in four bytes
    EXPECT_FALSE(dialog.Type(3395, "250", &error));
    EXPECT_EQ(error, "control 3395 (frequency) takes at most 2 characters");
    EXPECT_EQ(dialog.Find(3395)->text, "\xC3\xA4\xC3\xB6");
}

TEST(Dialog, SendsNothingOnceItHasEnded)
{
    RecordedDialog dialog;
    EXPECT_EQ(dialog.Result(), -1);
    EndDialog(dialog.Window(), 2);
    EndDialog(dialog.Window(), 1);
    std::string error;
    EXPECT_FALSE(dialog.Press(1, &error));
    EXPECT_EQ(error, "the dialog has ended");
    EXPECT_EQ(dialog.Send(kMessageTimer, 194, 0), 0);
    EXPECT_THAT(sentMessages, IsEmpty());
    EXPECT_EQ(dialog.Result(), 2);
}

TEST(Dialog, SendsATimerOnlyWhenItIsDueAndAgainAPeriodLater)
{
    RecordedDialog dialog;
    EXPECT_EQ(dialog.MillisecondsToNextTimer(0), std::nullopt);
    EXPECT_EQ(SetTimer(dialog.Window(), 194, 1000, nullptr), 194U);
    const uint64_t due = dialog.Timers().at(0).dueMs;
    EXPECT_EQ(dialog.MillisecondsToNextTimer(due - 400), 400U);
    dialog.SendDueTimers(due - 1);
    EXPECT_THAT(sentMessages, IsEmpty());
    dialog.SendDueTimers(due + 5000);  // late: once, not five times
    EXPECT_THAT(sentMessages, ElementsAre(SentMessage{275, 194}));
    EXPECT_EQ(dialog.MillisecondsToNextTimer(due + 5000), 1000U);
    dialog.SendAllTimers();
    EXPECT_THAT(sentMessages, ElementsAre(SentMessage{275, 194}, SentMessage{275, 194}));
}

TEST(Dialog, KeepsOneTimerOfAnIdAndRefusesAPeriodOfZero)
{
    RecordedDialog dialog;
    EXPECT_EQ(SetTimer(dialog.Window(), 194, 1000, nullptr), 194U);
    EXPECT_EQ(SetTimer(dialog.Window(), 194, 500, nullptr), 194U);
    EXPECT_EQ(SetTimer(dialog.Window(), 195, 0, nullptr), 0U);
    ASSERT_EQ(dialog.Timers().size(), 1U);
    EXPECT_EQ(dialog.Timers()[0].periodMs, 500U);
}

TEST(Dialog, FindsControlsByNumberAndByName)
{
    RecordedDialog dialog;
    ASSERT_NE(dialog.FindNamed("3395"), nullptr);
    EXPECT_EQ(dialog.FindNamed("3395"), dialog.FindNamed("frequency"));
    EXPECT_EQ(dialog.FindNamed("ok")->id, 1);
    EXPECT_EQ(dialog.FindNamed("3395x"), nullptr);
    EXPECT_EQ(dialog.FindNamed(""), nullptr);
}

}  // namespace
