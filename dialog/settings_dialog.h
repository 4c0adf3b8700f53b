// dialog/settings_dialog.h: the settings dialog that the client shows for the add-in's menu entry.
// Everything here runs on the client's main thread.  A window handle is borrowed from the window library;
// a handle of no window is harmless.
#pragma once

// The dialog's procedure: handles 272 (initialize), 273 (command) and 275 (timer).  Returns 1 when a
// command ended the dialog, else 0.
int DlgProc(unsigned long window, unsigned int message, unsigned long wParam, long lParam);

// True when the controls differ from the saved settings; the re-index box is not a setting.
bool IsSomethingDifferent(unsigned long window);
// Enables Apply exactly when something differs or the re-index box is visible and checked.
void SetApplyButton(unsigned long window);
// Enables or disables all that only matters while indexing is on, then sets the Apply button.
void EnableDialogItems(unsigned long window, bool enable);
// Enables Add while the list has room and Remove while it has entries; both only while indexing is on.
void SetListButtons(unsigned long window);
// Shows the instructions for indexing switched on or off.
void SetDialogInstructions(unsigned long window);
// Shows or hides the whole content of the dialog; while hidden, nothing is saved.
void ShowControls(unsigned long window, bool show);
// Index of `path` (SCS) in the list of databases, appended first when it is not there; -1 when the list
// cannot take it.
long AddToFileList(unsigned long window, const char* path);
// The same as PutStatus.
void SetIndexingStatus(unsigned long window);
