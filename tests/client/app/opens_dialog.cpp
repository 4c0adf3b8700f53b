// tests/client/app/opens_dialog.cpp: put before the client's window program by a test: the hand that picks the
// first entry of its menu, the add-in's, as soon as the window is there.
#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTimer>
#include <cstdlib>

namespace {

constexpr int kLookMs = 10;

void PickFirstEntry(QTimer* timer)
{
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        auto* const window = qobject_cast<QMainWindow*>(widget);
        if (window == nullptr || !window->isVisible())
            continue;
        timer->stop();
        window->menuBar()->actions().front()->menu()->actions().front()->trigger();
        return;
    }
}

void WaitForWindow()
{
    auto* const timer = new QTimer(QCoreApplication::instance());
    QObject::connect(timer, &QTimer::timeout, timer, [timer] { PickFirstEntry(timer); });
    timer->start(kLookMs);
}

// What the program starts has no windows.
const bool kWaits = [] {
    unsetenv("LD_PRELOAD");
    qAddPreRoutine(WaitForWindow);
    return true;
}();

}  // namespace
