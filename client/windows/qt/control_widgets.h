// client/windows/qt/control_widgets.h: how each kind of control looks as a widget.
#pragma once

#include <QString>
#include <functional>
#include <string>

#include "client/windows/dialog.h"

class QWidget;

namespace pavex {

// A control's text, or an entry, as Qt has texts.
QString QtText(const std::string& scs);

// The widget shows the control's state; what it shows already is not touched, and nothing is signalled.
// Not the text of a control with a mnemonic, see dialog_window.cpp.
void ShowControl(const Control& control, QWidget* widget);

// What the user does with the widget becomes an action on the dialog's control; `done` follows each.
void ConnectControl(Dialog& dialog, int id, QWidget* widget, const std::function<void()>& done);

}  // namespace pavex
