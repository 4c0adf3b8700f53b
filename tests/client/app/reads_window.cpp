// tests/client/app/reads_window.cpp: the user who reads the first window aloud, on standard output, and closes it,
// unless LEAVE_OPEN is set.
#include <QDialog>
#include <QLabel>
#include <QTextEdit>
#include <iostream>

#include "tests/client/app/window_hand.h"

namespace {

bool ReadAndClose(QWidget& widget)
{
    auto* const window = qobject_cast<QDialog*>(&widget);
    if (window == nullptr)
        return false;
    std::cout << "window: " << window->windowTitle().toStdString() << '\n';
    for (const QTextEdit* const text : window->findChildren<QTextEdit*>())
        std::cout << text->toPlainText().toStdString() << '\n';
    for (const QLabel* const label : window->findChildren<QLabel*>())
        if (label->isVisible() && !label->text().isEmpty())
            std::cout << "label: " << label->text().toStdString() << '\n';
    std::cout.flush();
    if (std::getenv("LEAVE_OPEN") == nullptr)
        window->reject();
    return true;
}

const bool kActs = ActOnFirstWindow<ReadAndClose>();

}  // namespace
