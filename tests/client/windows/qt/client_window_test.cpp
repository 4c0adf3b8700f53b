// tests/client/windows/qt/client_window_test.cpp: the client's own window: its menu, its log, and its end.
#include "client/windows/qt/client_window.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>
#include <fstream>

#include "tests/client/windows/qt/window_fixture.h"

namespace {

class ClientWindowTest : public WindowFixture {
protected:
    // Shows the window, lets the user at it, and closes what is still open.
    void Run(const std::function<void(QMainWindow& window)>& use)
    {
        pavex::SetFrontEnd(&frontEnd_);
        QTimer::singleShot(0, [&use] {
            use(ClientWindowShown());
            pavex::QtFrontEnd::CloseAll();
        });
        frontEnd_.RunClient(content_);
    }
    static QList<QAction*> Entries(const QMainWindow& window)
    {
        return window.menuBar()->actions().front()->menu()->actions();
    }
    static std::string LogIn(const QMainWindow& window)
    {
        return window.findChild<QPlainTextEdit*>()->toPlainText().toStdString();
    }

    pavex::QtFrontEnd frontEnd_;
    int opened_ = 0;
    pavex::ClientWindowContent content_{"Search & Find...", [this] { ++opened_; }, home_ / "client.log"};
};

TEST_F(ClientWindowTest, HasTheAddInsMenuEntryWhichOpensTheDialog)
{
    Run([&](QMainWindow& window) {
        QAction* const entry = Entries(window).front();
        EXPECT_EQ(entry->text(), "&Search && Find...");
        entry->trigger();
        EXPECT_EQ(opened_, 1);
        EXPECT_TRUE(entry->isEnabled());
    });
}

TEST_F(ClientWindowTest, HasNoEntryWhereTheAddInHasNone)
{
    content_.menuText.clear();
    Run([&](QMainWindow& window) {
        ASSERT_EQ(Entries(window).size(), 1);
        EXPECT_EQ(Entries(window).front()->text(), "&Quit");
    });
}

TEST_F(ClientWindowTest, OpensTheDialogOnceAtATime)
{
    QAction* entry = nullptr;
    content_.openDialog = [&] {
        ++opened_;
        entry->trigger();  // as from the tray's menu
    };
    Run([&](QMainWindow& window) {
        entry = Entries(window).front();
        entry->trigger();
    });
    EXPECT_EQ(opened_, 1);
}

TEST_F(ClientWindowTest, FollowsTheLog)
{
    WriteWholeFile(home_ / "client.log", "one\n");
    Run([&](QMainWindow& window) {
        EXPECT_EQ(LogIn(window), "one");
        std::ofstream(home_ / "client.log", std::ios::app) << "two\nthree\n";
        EXPECT_TRUE(QTest::qWaitFor([&] { return LogIn(window) == "one\ntwo\nthree"; }));
        EXPECT_TRUE(window.findChild<QPlainTextEdit*>()->isReadOnly());
    });
}

TEST_F(ClientWindowTest, KeepsTheLastLineInSightUnlessTheUserReadsFurtherUp)
{
    const auto append = [this](int count) {
        std::ofstream log(home_ / "client.log", std::ios::app);
        for (int line = 0; line < count; ++line)
            log << "a line\n";
    };
    append(100);
    Run([&](QMainWindow& window) {
        auto* const view = window.findChild<QPlainTextEdit*>();
        const QScrollBar* const bar = view->verticalScrollBar();
        EXPECT_TRUE(QTest::qWaitFor([&] { return bar->maximum() > 0 && bar->value() == bar->maximum(); }));
        append(50);
        EXPECT_TRUE(QTest::qWaitFor([&] { return view->blockCount() == 150; }));
        EXPECT_EQ(bar->value(), bar->maximum());
        view->setFocus();
        QTest::keyClick(view, Qt::Key_PageUp);
        const int before = bar->value();
        EXPECT_LT(before, bar->maximum());
        append(50);
        EXPECT_TRUE(QTest::qWaitFor([&] { return view->blockCount() == 200; }));
        EXPECT_EQ(bar->value(), before);
    });
}

TEST_F(ClientWindowTest, EndsWhenItIsClosedAndByItsMenu)
{
    for (const bool byMenu : {false, true}) {
        Run([&](QMainWindow& window) {
            EXPECT_TRUE(window.isVisible());
            if (byMenu)
                Entries(window).back()->trigger();
            else
                EXPECT_TRUE(window.close());
            EXPECT_FALSE(window.isVisible());
        });
    }
}

TEST_F(ClientWindowTest, HasAnIconForTheTrayWithTheSameMenuWhichHidesAndShowsIt)
{
    Run([&](QMainWindow& window) {
        auto* const tray = window.findChild<QSystemTrayIcon*>();
        ASSERT_NE(tray, nullptr);
        EXPECT_EQ(tray->isVisible(), QSystemTrayIcon::isSystemTrayAvailable());
        EXPECT_FALSE(tray->icon().isNull());
        EXPECT_EQ(tray->toolTip(), "Pavex");
        EXPECT_EQ(tray->contextMenu()->actions(), Entries(window));
        emit tray->activated(QSystemTrayIcon::Trigger);
        EXPECT_FALSE(window.isVisible());
        tray->contextMenu()->actions().front()->trigger();
        EXPECT_EQ(opened_, 1) << "also while the window is hidden";
        emit tray->activated(QSystemTrayIcon::Trigger);
        EXPECT_TRUE(window.isVisible());
        emit tray->activated(QSystemTrayIcon::Context);
        EXPECT_TRUE(window.isVisible());
    });
}

TEST_F(ClientWindowTest, EndsByTheTraysMenuWhileItIsHidden)
{
    bool ended = false;
    Run([&](QMainWindow& window) {
        auto* const tray = window.findChild<QSystemTrayIcon*>();
        emit tray->activated(QSystemTrayIcon::Trigger);
        tray->contextMenu()->actions().back()->trigger();
        ended = !tray->isVisible();
    });
    EXPECT_TRUE(ended);
}

TEST_F(ClientWindowTest, ClosesTheDialogWithItself)
{
    SaveDatabases(1);
    long result = 0;
    content_.openDialog = [&] {
        QTimer::singleShot(0, [] { pavex::QtFrontEnd::CloseAll(); });
        result = UIXDialogBox(0, kSettingsDialogResource,
                              [](unsigned long window, unsigned int message, unsigned long wParam, long) {
                                  if (message == kMessageCommand && wParam == kButtonCancel)
                                      EndDialog(window, kButtonCancel);
                                  return 0;
                              });
    };
    Run([&](QMainWindow& window) {
        Entries(window).front()->trigger();
        EXPECT_FALSE(window.isVisible());
    });
    EXPECT_EQ(result, kButtonCancel);
}

}  // namespace
