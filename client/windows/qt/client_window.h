// client/windows/qt/client_window.h: the client's own window: the add-in's menu entry, the log, and an icon in
// the system tray where there is one.
#pragma once

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
    void ShowLog();

    LogTail log_;
    QPlainTextEdit view_;
    QTimer timer_;
    QSystemTrayIcon tray_;
    QEventLoop loop_;
    bool closed_ = false;
};

}  // namespace pavex
