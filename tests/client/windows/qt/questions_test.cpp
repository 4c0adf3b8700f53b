// tests/client/windows/qt/questions_test.cpp: the boxes that the dialog shows, and each of their answers.
#include <QCheckBox>
#include <QPushButton>

#include "addin/lifecycle.h"
#include "platform/windows.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "tests/client/windows/qt/window_fixture.h"

namespace {

class QuestionsInWindow : public WindowFixture {};

const std::vector<std::string> kOkAndCancel = {"Cancel", "OK"};

std::vector<std::string> Sorted(std::vector<std::string> texts)
{
    std::sort(texts.begin(), texts.end());
    return texts;
}

TEST_F(QuestionsInWindow, SwitchingOnShowsAWarningWithOkAndCancel)
{
    SaveDatabases(1);
    NextBox(Answer(QMessageBox::Ok));
    Open([&] {
        Click(kCheckEnabled);
        EXPECT_TRUE(The<QCheckBox>(kCheckEnabled)->isChecked());
        EXPECT_TRUE(Widget(kCheckDrafts)->isEnabled());
    });
    ASSERT_EQ(Boxes().size(), 1U);
    EXPECT_EQ(Boxes()[0].icon, QMessageBox::Warning);
    EXPECT_EQ(Boxes()[0].caption, "<115>");
    EXPECT_EQ(Boxes()[0].text, std::string(1024, 'n'));
    EXPECT_EQ(Sorted(Boxes()[0].buttons), kOkAndCancel);
    EXPECT_EQ(Boxes()[0].defaultButton, "OK");
}

TEST_F(QuestionsInWindow, DecliningTheNoticeLeavesIndexingOff)
{
    SaveDatabases(1);
    for (const auto& answer : {Answer(QMessageBox::Cancel), AnswerByKey(Qt::Key_Escape)}) {
        NextBox(answer);
        Open([&] {
            Click(kCheckEnabled);
            EXPECT_FALSE(The<QCheckBox>(kCheckEnabled)->isChecked());
            EXPECT_FALSE(Widget(kCheckDrafts)->isEnabled());
        });
    }
}

TEST_F(QuestionsInWindow, NoNoticeIsShownWhereItIsSkipped)
{
    SaveDatabases(1);
    for (const char* const variable : {"GoogleSkipLegal", "GoogleBuildQuorvex"}) {
        SCOPED_TRACE(variable);
        SetIni(variable, "1");
        Open([&] {
            Click(kCheckEnabled);
            EXPECT_TRUE(Widget(kCheckDrafts)->isEnabled());
        });
        SetIni(variable, "0");
    }
    EXPECT_TRUE(Boxes().empty());
}

TEST_F(QuestionsInWindow, ReturnAcceptsTheNotice)
{
    SaveDatabases(1);
    NextBox(AnswerByKey(Qt::Key_Return));
    Open([&] {
        Click(kCheckEnabled);
        EXPECT_TRUE(The<QCheckBox>(kCheckEnabled)->isChecked());
    });
}

class ReindexQuestion : public WindowFixture {
protected:
    ReindexQuestion()
    {
        SetIni("GDSIndexEnabled", "1");
        SaveDatabases(1);
    }
    // Changes an option that notes already indexed depend on, and presses OK.
    void Widen()
    {
        Click(kCheckEncrypted);
        Click(kButtonOk);
    }
};

TEST_F(ReindexQuestion, IsAskedWithAQuestionMarkAndOkAndCancel)
{
    NextBox(Answer(QMessageBox::Ok));
    EXPECT_EQ(Open([&] { Widen(); }), kButtonOk);
    ASSERT_EQ(Boxes().size(), 1U);
    EXPECT_EQ(Boxes()[0].icon, QMessageBox::Question);
    EXPECT_EQ(Boxes()[0].text, "<149>");
    EXPECT_EQ(Boxes()[0].caption, "<150>");
    EXPECT_EQ(Sorted(Boxes()[0].buttons), kOkAndCancel);
    EXPECT_TRUE(IsIndexingEncrypted());
    EXPECT_NE(bStopAndReset, 0);
}

struct AskingRow {
    const char* variable;
    int control;
    bool checkedBefore;
    bool asks;
};
constexpr AskingRow kAsking[] = {
    {"GDSIndexEncrypted", kCheckEncrypted, true, true},    {"GDSIndexEncrypted", kCheckEncrypted, false, true},
    {"GDSIndexDrafts", kCheckDrafts, true, true},          {"GDSIndexDrafts", kCheckDrafts, false, true},
    {"GDSIndexDiscussion", kCheckDiscussion, true, false}, {"GDSIndexDiscussion", kCheckDiscussion, false, true},
    {"GDSIndexOnIdle", kCheckIdle, false, false},          {"GDSIndexOnIdle", kCheckIdle, true, false},
};

TEST_F(ReindexQuestion, IsAskedForWhatChangesNotesThatAreIndexedAndForNothingElse)
{
    for (const AskingRow& row : kAsking) {
        SCOPED_TRACE(testing::Message() << row.variable << " was " << row.checkedBefore);
        SetIni(row.variable, row.checkedBefore ? "1" : "0");
        bStopAndReset = 0;
        const size_t before = Boxes().size();
        if (row.asks)
            NextBox(Answer(QMessageBox::Ok));
        EXPECT_EQ(Open([&] {
                      EXPECT_EQ(The<QCheckBox>(row.control)->isChecked(), row.checkedBefore);
                      Click(row.control);
                      Click(kButtonOk);
                  }),
                  kButtonOk);
        EXPECT_EQ(Boxes().size(), before + (row.asks ? 1 : 0));
        EXPECT_EQ(bStopAndReset, row.asks ? 1 : 0);
    }
}

TEST_F(ReindexQuestion, IsNotAskedOfWhoHasCheckedTheReindexBoxAlready)
{
    Open([&] {
        Click(kCheckReindex);
        Widen();
    });
    EXPECT_TRUE(Boxes().empty());
    EXPECT_TRUE(IsIndexingEncrypted());
    EXPECT_EQ(bStopAndReset, 1);
}

TEST_F(ReindexQuestion, IsNotAskedWhenIndexingIsSwitchedOffWithIt)
{
    Open([&] {
        Click(kCheckEncrypted);
        Click(kCheckEnabled);
        Click(kButtonOk);
    });
    EXPECT_TRUE(Boxes().empty());
    EXPECT_TRUE(IsIndexingEncrypted());
    EXPECT_EQ(bStopAndReset, 0);
}

TEST_F(ReindexQuestion, IsNotAskedTheFirstTimeAfterRegistration)
{
    SetJustRegistered(1);
    Open([&] { Widen(); });
    EXPECT_TRUE(Boxes().empty());
    EXPECT_TRUE(IsIndexingEncrypted());
    EXPECT_EQ(JustRegistered(), 0);
    EXPECT_EQ(bStopAndReset, 0);
}

TEST_F(ReindexQuestion, IsNotAskedOnceNoDatabaseIsLeft)
{
    Open([&] {
        Click(kButtonRemove);
        Widen();
    });
    EXPECT_TRUE(Boxes().empty());
    EXPECT_TRUE(IsIndexingEncrypted());
}

TEST_F(ReindexQuestion, IsNotAskedForProposalsOfWhichNothingIsIndexed)
{
    SetDbPath(0, nullptr);
    const std::string names = MakeDatabase("names.vlt");
    Open([&] { Widen(); });
    EXPECT_TRUE(Boxes().empty());
    EXPECT_EQ(Slots(), std::vector<std::string>{names});
}

TEST_F(ReindexQuestion, DeclinedAbandonsTheSaveAndTheWindowStays)
{
    const std::string before = IniFile();
    for (const auto& answer : {Answer(QMessageBox::Cancel), AnswerByKey(Qt::Key_Escape)}) {
        NextBox(answer);
        EXPECT_EQ(Open([&] {
                      Widen();
                      EXPECT_TRUE(Window().isVisible());
                      EXPECT_TRUE(The<QCheckBox>(kCheckEncrypted)->isChecked());
                      Click(kButtonCancel);
                  }),
                  kButtonCancel);
        EXPECT_EQ(IniFile(), before);
        EXPECT_EQ(bStopAndReset, 0);
    }
}

TEST_F(ReindexQuestion, IsAskedByApplyToo)
{
    NextBox(Answer(QMessageBox::Ok));
    Open([&] {
        Click(kCheckDrafts);
        Click(kButtonApply);
        EXPECT_TRUE(Window().isVisible());
        EXPECT_FALSE(Widget(kButtonApply)->isEnabled());
    });
    EXPECT_TRUE(IsIndexingDrafts());
}

TEST_F(ReindexQuestion, TurnsDownTheWholeWhenAllIsClosed)
{
    NextBox([](QMessageBox&) { pavex::QtFrontEnd::CloseAll(); });
    EXPECT_EQ(Open([&] { Widen(); }), kButtonCancel);
    EXPECT_FALSE(IsIndexingEncrypted());
}

TEST_F(QuestionsInWindow, ABoxWithOkAloneIsAnsweredOkHoweverItIsClosed)
{
    SaveDatabases(1);
    for (const auto& answer : {Answer(QMessageBox::Ok), AnswerByKey(Qt::Key_Escape), AnswerByKey(Qt::Key_Return)}) {
        NextBox(answer);
        Open([&] { EXPECT_EQ(UIXMessageBox(0, "one & <b>two</b>", "three", kBoxWarning, 0), kAnswerOk); });
        EXPECT_EQ(Boxes().back().text, "one & <b>two</b>");
        EXPECT_EQ(Boxes().back().buttons, (std::vector<std::string>{"OK"}));
    }
}

TEST_F(QuestionsInWindow, ABoxWithoutAnIconHasNone)
{
    NextBox(Answer(QMessageBox::Ok));
    Open([&] { UIXMessageBox(0, "text", "caption", kBoxOk, 0); });
    EXPECT_EQ(Boxes().at(0).icon, QMessageBox::NoIcon);
}

}  // namespace
