// client/windows/window_table.h: window handles and what they stand for.
// Handles are small numbers, because a message box takes the low 16 bits of one.  Client's main thread only.
#pragma once

namespace pavex {

class Dialog;
struct Control;

// A handle for a dialog (controlId 0) or one of its controls; 1..65535, 0 when all are in use.
unsigned long RegisterWindow(Dialog* dialog, int controlId);
void UnregisterWindow(unsigned long handle);
// Null for a handle of nothing, of a control, or of a dialog that is gone.
Dialog* FindDialog(unsigned long window);
// Null for a handle of nothing, of a dialog, or of a control that is gone.
Control* FindControl(unsigned long control);

}  // namespace pavex
