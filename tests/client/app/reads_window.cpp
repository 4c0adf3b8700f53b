// tests/client/app/reads_window.cpp: put before the program's libraries by a test: the user who reads the window that
// comes up, aloud on standard output, and closes it, unless LEAVE_OPEN is set.
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QTextEdit>
#include <QTimer>
#include <cstdlib>
#include <iostream>

namespace {

constexpr int kLookMs = 10;

void ReadFirstWindow(QTimer* timer)
{
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        auto* const window = qobject_cast<QDialog*>(widget);
        if (window == nullptr || !window->isVisible())
            continue;
        timer->stop();
        std::cout << "window: " << window->windowTitle().toStdString() << '\n';
        for (const QTextEdit* const text : window->findChildren<QTextEdit*>())
            std::cout << text->toPlainText().toStdString() << '\n';
        for (const QLabel* const label : window->findChildren<QLabel*>())
            if (label->isVisible() && !label->text().isEmpty())
                std::cout << "label: " << label->text().toStdString() << '\n';
        std::cout.flush();
        if (std::getenv("LEAVE_OPEN") == nullptr)
            window->reject();
        return;
    }
}

void WaitForWindow()
{
    auto* const timer = new QTimer(QCoreApplication::instance());
    QObject::connect(timer, &QTimer::timeout, timer, [timer] { ReadFirstWindow(timer); });
    timer->start(kLookMs);
}

// What the program starts has no windows.
const bool kWaits = [] {
    unsetenv("LD_PRELOAD");
    qAddPreRoutine(WaitForWindow);
    return true;
}();

}  // namespace
