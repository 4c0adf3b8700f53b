// client/windows/qt/client_window.h: the client's own window: the add-in's menu entry, the log, and an icon in
// the system tray where there is one.
#pragma once

#include <QAction>
#include <QEventLoop>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QSystemTrayIcon>
#include <QTimer>

#include "client/windows/qt/log_tail.h"
#include "client/windows/window_plugin.h"

namespace pavex {

class ClientWindow : public QMainWindow {
public:
    explicit ClientWindow(const ClientWindowContent& content);

    void WaitUntilClosed();

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void AddMenu(const ClientWindowContent& content);
    void AddTrayIcon();
    void ShowTrayIcon();
    void OpenDialog();
    void ShowLog();

    std::function<void()> openDialog_;
    QAction* dialogEntry_ = nullptr;  // the add-in's; none where it has none
    LogTail log_;
    QPlainTextEdit view_;
    QTimer timer_;
    QSystemTrayIcon tray_{this};
    QEventLoop loop_;
    bool closed_ = false;
};

}  // namespace pavex
