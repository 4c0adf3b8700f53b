// client/windows/qt/client_window.cpp: the client's own window.
#include "client/windows/qt/client_window.h"

#include <QCloseEvent>
#include <QFontDatabase>
#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>

#include "client/windows/qt/mnemonics.h"
#include "client/windows/qt/program_icon.h"
#include "client/windows/qt/qt_front_end.h"
#include "client/windows/resource_text.h"

namespace pavex {

namespace {

constexpr int kLookPeriodMs = 500;
constexpr int kMostLogLines = 2000;

}  // namespace

ClientWindow::ClientWindow(const ClientWindowContent& content)
    : openDialog_(content.openDialog), log_(QString::fromStdString(content.log))
{
    setWindowTitle("Pavex");
    view_.setReadOnly(true);
    view_.setMaximumBlockCount(kMostLogLines);
    view_.setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    view_.setLineWrapMode(QPlainTextEdit::NoWrap);
    view_.setAccessibleName(QString::fromStdString(Localized(kTextLog)));
    setCentralWidget(&view_);
    resize(fontMetrics().averageCharWidth() * 100, fontMetrics().lineSpacing() * 24);
    AddMenu(content);
    AddTrayIcon();
    connect(&timer_, &QTimer::timeout, this, [this] {
        ShowLog();
        ShowTrayIcon();
    });
    timer_.start(kLookPeriodMs);
    ShowLog();
}

void ClientWindow::AddMenu(const ClientWindowContent& content)
{
    QMenu* const menu = menuBar()->addMenu("&Pavex");
    const std::vector<QString> texts =
        WithMnemonics({{QString::fromStdString(content.menuText), "search"},
                       {QString::fromStdString(Localized(kTextQuit)), kTextQuit.english}});
    if (!content.menuText.empty()) {
        dialogEntry_ = menu->addAction(texts[0]);
        connect(dialogEntry_, &QAction::triggered, this, [this] { OpenDialog(); });
        menu->addSeparator();
    }
    connect(menu->addAction(texts[1], QKeySequence(Qt::CTRL | Qt::Key_Q)), &QAction::triggered, this,
            [] { QtFrontEnd::CloseAll(); });
    tray_.setContextMenu(menu);
}

void ClientWindow::OpenDialog()
{
    dialogEntry_->setEnabled(false);  // the tray's menu can be reached while the dialog is open
    openDialog_();
    dialogEntry_->setEnabled(true);
}

void ClientWindow::AddTrayIcon()
{
    setWindowIcon(ProgramIcon());
    tray_.setIcon(windowIcon());
    tray_.setToolTip(windowTitle());
    connect(&tray_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger)
            setVisible(!isVisible());
    });
    ShowTrayIcon();
}

// A tray may come after the client, as when both start with the session.
void ClientWindow::ShowTrayIcon()
{
    if (!closed_ && !tray_.isVisible() && QSystemTrayIcon::isSystemTrayAvailable())
        tray_.show();
}

// The last line stays in sight; who reads further up is left there.
void ClientWindow::ShowLog()
{
    const QString text = log_.ReadNew();
    if (text.isEmpty())
        return;
    QScrollBar* const bar = view_.verticalScrollBar();
    const int before = bar->value();
    const bool atEnd = before == bar->maximum();
    view_.appendPlainText(text.chopped(1));
    bar->setValue(atEnd ? bar->maximum() : before);
}

void ClientWindow::showEvent(QShowEvent* event)
{
    QMainWindow::showEvent(event);
    view_.verticalScrollBar()->setValue(view_.verticalScrollBar()->maximum());
}

void ClientWindow::WaitUntilClosed()
{
    if (!closed_)
        loop_.exec();
}

void ClientWindow::closeEvent(QCloseEvent* event)
{
    event->accept();
    closed_ = true;
    tray_.hide();
    loop_.quit();
}

}  // namespace pavex
