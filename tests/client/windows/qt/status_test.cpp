// tests/client/windows/qt/status_test.cpp: the status lines and the progress bar in the window.
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>

#include "addin/lifecycle.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "tests/client/windows/qt/window_fixture.h"

namespace {

class StatusInWindow : public WindowFixture {
protected:
    StatusInWindow()
    {
        SetIni("GDSIndexEnabled", "1");
        paths_ = SaveDatabases(2);
    }
    // An ordinary pass over the first database.
    void Pass(uint32_t processed, uint32_t total)
    {
        GlobalContext.database = 0;
        GlobalContext.inProgress = 1;
        GlobalContext.processed = processed;
        GlobalContext.total = total;
    }
    std::string Line(int id) { return The<QLabel>(id)->text().toStdString(); }
    QProgressBar& Bar() { return *Window().findChild<QProgressBar*>(); }

    std::vector<std::string> paths_;
};

TEST_F(StatusInWindow, LinesSayWhatTheDialogSets)
{
    Pass(3, 12);
    Open([&] {
        EXPECT_EQ(Line(kTextOverallStatus), "<203>109:3/12/25");
        EXPECT_EQ(Line(kTextActivityStatus), "<202>" + paths_[0]);
        EXPECT_EQ(Line(kTextSelectedStatus), "<193><156>");
        for (const int id : {kTextOverallStatus, kTextActivityStatus, kTextSelectedStatus})
            EXPECT_TRUE(Widget(id)->isVisible()) << id;
    });
}

TEST_F(StatusInWindow, WhileIndexingIsOffTheOverallLineSaysSoAndTheActivityLineIsHidden)
{
    Pass(1, 2);  // one that still ends
    Open([&] {
        EXPECT_TRUE(Widget(kTextActivityStatus)->isVisible());
        Click(kCheckEnabled);
        Click(kButtonApply);
        EXPECT_TRUE(QTest::qWaitFor([&] { return Line(kTextOverallStatus) == "<203><106>"; }));
        EXPECT_TRUE(Widget(kTextOverallStatus)->isVisible());
        EXPECT_FALSE(Widget(kTextActivityStatus)->isVisible());
        EXPECT_FALSE(Bar().isVisible());
    });
    Open([&] {
        EXPECT_EQ(Line(kTextOverallStatus), "<203><106>");
        EXPECT_FALSE(Widget(kTextActivityStatus)->isVisible());
    });
}

TEST_F(StatusInWindow, ADatabaseThatWasNeverIndexedSaysSo)
{
    Open([&] {
        EXPECT_EQ(Line(kTextSelectedStatus), "<193><107>");
        EXPECT_TRUE(Widget(kTextSelectedStatus)->isVisible());
    });
}

TEST_F(StatusInWindow, AnInterruptedPassShowsHowFarItCameWhenItsDatabaseIsSelected)
{
    const TIMEDATE since = SomeTime(9);
    const TIMEDATE until = SomeTime(10);
    SetDbTimestamp(1, &since, &until, 1234, 30, 120);
    Open([&] {
        EXPECT_EQ(Line(kTextSelectedStatus), "<193><107>");
        The<QListWidget>(kListDatabases)->setFocus();
        Key(Qt::Key_Down);
        EXPECT_EQ(Line(kTextSelectedStatus), "<193>110:30/120/25");
    });
}

TEST_F(StatusInWindow, ADatabaseThatIsIndexedShowsUpToWhen)
{
    const TIMEDATE since = SomeTime(9);
    SetDbTimestamp(0, &since, nullptr, 0, 0, 0);
    GlobalContext.upToDate = 1;
    Open([&] {
        EXPECT_TRUE(Line(kTextSelectedStatus).starts_with("<193><108>2007-03-05")) << Line(kTextSelectedStatus);
        EXPECT_TRUE(Line(kTextOverallStatus).starts_with("<203><108>2007-03-05")) << Line(kTextOverallStatus);
    });
}

TEST_F(StatusInWindow, AHistoryPassHidesTheOverallLineAndItsNumbersStandWithTheDatabase)
{
    Pass(3, 12);
    GlobalContext.historyActive = 1;
    Open([&] {
        EXPECT_FALSE(Widget(kTextOverallStatus)->isVisible());
        EXPECT_EQ(Line(kTextSelectedStatus), "<193>110:3/12/25");
        EXPECT_EQ(Line(kTextActivityStatus), "<202><185>");
        EXPECT_TRUE(Widget(kTextActivityStatus)->isVisible());
    });
}

TEST_F(StatusInWindow, AHiddenLineIsHiddenAndTheRestStaysInItsPlace)
{
    Open([&] {
        EXPECT_FALSE(Widget(kTextActivityStatus)->isVisible());
        const QPoint before = Widget(kButtonOk)->pos();
        Pass(1, 2);
        EXPECT_TRUE(QTest::qWaitFor([&] { return Widget(kTextActivityStatus)->isVisible(); }));
        EXPECT_EQ(Widget(kButtonOk)->pos(), before);
    });
}

TEST_F(StatusInWindow, TheTimerKeepsTheLinesAlive)
{
    Pass(1, 4);
    Open([&] {
        EXPECT_EQ(Line(kTextOverallStatus), "<203>109:1/4/25");
        for (const uint32_t processed : {2U, 3U}) {
            Pass(processed, 4);
            const std::string expected =
                "<203>109:" + std::to_string(processed) + "/4/" + std::to_string(processed * 25);
            EXPECT_TRUE(QTest::qWaitFor([&] { return Line(kTextOverallStatus) == expected; }))
                << Line(kTextOverallStatus);
        }
    });
}

TEST_F(StatusInWindow, TheTimerRunsWhileAQuestionIsOpen)
{
    SetIni("GDSIndexEnabled", "0");
    Pass(1, 4);
    NextBox([&](QMessageBox& box) {
        SetIni("GDSIndexEnabled", "1");
        EXPECT_TRUE(QTest::qWaitFor([&] { return Line(kTextOverallStatus) == "<203>109:1/4/25"; }))
            << Line(kTextOverallStatus);
        box.reject();
    });
    Open([&] {
        EXPECT_EQ(Line(kTextOverallStatus), "<203><106>");
        Click(kCheckEnabled);
    });
}

// Two lines with a percentage; Apply hides the overall one.
int SayPercentages(unsigned long window, unsigned int message, unsigned long wParam, long /*lParam*/)
{
    if (message == kMessageInitialize) {
        UIXSetDlgItemText(window, kTextSelectedStatus, "database: 1 of 2 (50%)");
        UIXSetDlgItemText(window, kTextOverallStatus, "all: 3 of 4 (75%)");
        UIXSetDlgItemText(window, kTextActivityStatus, "file: /tmp/99%.vlt");
    } else if (wParam == kButtonApply) {
        WINShowWindow(GetDlgItem(window, kTextOverallStatus), kShowHidden);
    } else if (wParam == kButtonCancel) {
        EndDialog(window, kButtonCancel);
    }
    return 0;
}

TEST_F(StatusInWindow, TheBarShowsThePercentageOfTheOverallLineElseThatOfTheDatabase)
{
    Open(SayPercentages, [&] {
        EXPECT_TRUE(Bar().isVisible());
        EXPECT_EQ(Bar().maximum(), 100);
        EXPECT_EQ(Bar().value(), 75);
        EXPECT_EQ(Bar().accessibleName(), "all: 3 of 4 (75%)");
        Click(kButtonApply);
        EXPECT_EQ(Bar().value(), 50);
        EXPECT_EQ(Bar().accessibleName(), "database: 1 of 2 (50%)");
    });
}

TEST_F(StatusInWindow, TheBarHasNoEndWhileNoNumberIsKnown)
{
    Pass(1, 2);  // the test's own texts have no percent sign
    Open([&] {
        EXPECT_TRUE(Bar().isVisible());
        EXPECT_EQ(Bar().maximum(), 0);
    });
}

TEST_F(StatusInWindow, TheBarIsThereOnlyWhileSomethingIsIndexed)
{
    Open([&] { EXPECT_FALSE(Bar().isVisible()); });
}

TEST_F(StatusInWindow, APathIsShownLetterByLetterAndWhole)
{
    const std::string path = MakeDatabase("a & b <b>" + std::string(110, 'x') + ".vlt");
    SetDbPath(0, path.c_str());
    Pass(1, 2);
    Open([&] {
        const auto* const line = The<QLabel>(kTextActivityStatus);
        EXPECT_EQ(line->text().toStdString(), "<202>" + path);
        EXPECT_EQ(line->textFormat(), Qt::PlainText);
        EXPECT_GE(line->height(), line->heightForWidth(line->width()));
        EXPECT_GT(line->height(), QFontMetrics(line->font()).lineSpacing()) << "it takes more than one line";
    });
}

TEST_F(StatusInWindow, TheWindowGrowsForALineThatBecomesLonger)
{
    Open([&] {
        const int before = Window().height();
        const std::string path = MakeDatabase(std::string(200 - (home_ / "data").size(), 'y') + ".vlt");
        SetDbPath(0, path.c_str());
        Pass(1, 2);
        EXPECT_TRUE(QTest::qWaitFor([&] { return Widget(kTextActivityStatus)->isVisible(); }));
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return Widget(kTextActivityStatus)->height() >=
                   Widget(kTextActivityStatus)->heightForWidth(Widget(kTextActivityStatus)->width());
        }));
        EXPECT_GE(Window().height(), before);
    });
}

}  // namespace
