// dialog/dialog_steps.h: what the dialog procedure does at each message.  Client's main thread.
#pragma once

// Fills the controls from the saved settings and starts the status timer.
void InitializeDialog(unsigned long window);
// Does what a command asks for.  wParam as it came with the message.  1 when it ended the dialog, else 0.
int HandleCommand(unsigned long window, unsigned long wParam);
// OK (close) and Apply.  1 when the dialog was ended; 0 when it stays open, saved or not.
int SaveDialog(unsigned long window, bool close);
