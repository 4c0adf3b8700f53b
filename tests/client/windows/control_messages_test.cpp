// tests/client/windows/control_messages_test.cpp
#include <gmock/gmock.h>

#include "tests/client/windows/recording_procedure.h"

namespace {

using testing::ElementsAre;

class ControlMessages : public testing::Test {
protected:
    ControlMessages()
    {
        for (const char* entry : {"a", "bb", "ccc"})
            UIXListboxAddItem(dialog_.Window(), 3383, entry);
    }
    long ToList(unsigned int message, unsigned long wParam = 0, long lParam = 0)
    {
        return SendMessage(GetDlgItem(dialog_.Window(), 3383), message, wParam, lParam);
    }
    RecordedDialog dialog_;
};

TEST_F(ControlMessages, CountSelectAndReadEntries)
{
    char text[257] = "";
    EXPECT_EQ(ToList(kListGetCount), 3);
    EXPECT_EQ(ToList(kListGetSelection), -1);
    EXPECT_EQ(ToList(kListSetSelection, 1), 1);
    EXPECT_EQ(ToList(kListGetSelection), 1);
    EXPECT_EQ(ToList(kListGetTextLength, 2), 3);
    EXPECT_EQ(ToList(kListGetText, 2, reinterpret_cast<long>(text)), 3);
    EXPECT_STREQ(text, "ccc");
}

TEST_F(ControlMessages, KeepTheSelectedEntrySelectedWhenAnotherIsDeleted)
{
    ToList(kListSetSelection, 2);
    EXPECT_EQ(ToList(kListDelete, 0), 2);
    EXPECT_EQ(ToList(kListGetSelection), 1);
    EXPECT_EQ(ToList(kListDelete, 1), 1);
    EXPECT_EQ(ToList(kListGetSelection), -1);
    EXPECT_THAT(dialog_.Find(3383)->entries, ElementsAre("bb"));
}

TEST_F(ControlMessages, AnswerMinusOneForAnEntryThatIsNotThere)
{
    char text[257] = "kept";
    for (const unsigned long index : {3UL, ~0UL}) {
        EXPECT_EQ(ToList(kListDelete, index), -1);
        EXPECT_EQ(ToList(kListSetSelection, index), -1);
        EXPECT_EQ(ToList(kListGetText, index, reinterpret_cast<long>(text)), -1);
        EXPECT_EQ(ToList(kListGetTextLength, index), -1);
    }
    EXPECT_EQ(ToList(kListGetText, 0, 0), -1);
    EXPECT_STREQ(text, "kept");
}

TEST_F(ControlMessages, AnswerAnErrorForControlsThatDoNotTakeThem)
{
    EXPECT_EQ(SendMessage(0, kListGetCount, 0, 0), -1);
    EXPECT_EQ(SendMessage(GetDlgItem(dialog_.Window(), 3382), kListGetCount, 0, 0), -1);
    EXPECT_EQ(ToList(kEditLimitText, 2), 0);
    EXPECT_EQ(ToList(4711), 0);
}

}  // namespace
