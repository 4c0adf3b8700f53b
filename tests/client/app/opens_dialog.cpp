// tests/client/app/opens_dialog.cpp: the hand that picks the first entry of the client's menu, the add-in's, as soon as
// the window is there.
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

#include "tests/client/app/window_hand.h"

namespace {

bool PickFirstEntry(QWidget& widget)
{
    auto* const window = qobject_cast<QMainWindow*>(&widget);
    if (window != nullptr)
        window->menuBar()->actions().front()->menu()->actions().front()->trigger();
    return window != nullptr;
}

const bool kActs = ActOnFirstWindow<PickFirstEntry>();

}  // namespace
