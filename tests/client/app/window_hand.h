// tests/client/app/window_hand.h: a library that a test puts before the program's own: a user's hand at its windows.
#pragma once

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <cstdlib>

// To be called as the library is loaded: act is tried on each visible window until it returns true, once the
// application is there.
template <bool (*act)(QWidget& window)> bool ActOnFirstWindow()
{
    constexpr int kLookMs = 10;
    unsetenv("LD_PRELOAD");  // what the program starts has no windows
    qAddPreRoutine([] {
        auto* const timer = new QTimer(QCoreApplication::instance());
        QObject::connect(timer, &QTimer::timeout, timer, [timer] {
            timer->stop();  // what is opened may have an event loop of its own
            for (QWidget* const window : QApplication::topLevelWidgets())
                if (window->isVisible() && act(*window))
                    return;
            timer->start();
        });
        timer->start(kLookMs);
    });
    return true;
}
