// platform/windows.h: the client's window library as the add-in sees it.
// Win32-style calls on dialogs and their controls.  Text is in the store's character set.  All calls
// come from the client's main thread, from inside a dialog procedure or below it.
#pragma once

#include "platform/store.h"

extern "C" {

// A dialog procedure.  Returns 1 when it ended the dialog, else 0.
using DialogProcedure = int (*)(unsigned long window, unsigned int message, unsigned long wParam, long lParam);

constexpr unsigned int kMessageInitialize = 272;
constexpr unsigned int kMessageCommand = 273;  // wParam: bit 31, ask LookupCommandMsgID; bit 30, the id is
                                               // wParam without bit 0x2000; else the id is its low 16 bits
constexpr unsigned int kMessageTimer = 275;    // wParam: the timer's id

constexpr int kShowHidden = 0;
constexpr int kShowVisible = 5;

// Message-box flags and its answer for OK.
constexpr int kBoxOk = 0;
constexpr int kBoxWarning = 48;           // OK, warning icon
constexpr int kBoxOkCancelQuestion = 33;  // OK and Cancel, question icon
constexpr int kBoxOkCancelWarning = 49;   // OK and Cancel, warning icon
constexpr int kAnswerOk = 1;

// Messages that SendMessage takes.
constexpr unsigned int kListDelete = 386;         // wParam index; answers the entries left, -1 on error
constexpr unsigned int kListSetSelection = 390;   // wParam index; answers it, -1 on error
constexpr unsigned int kListGetSelection = 392;   // answers the index, -1 for none
constexpr unsigned int kListGetText = 393;        // wParam index, lParam char[257]; answers the length, -1 on error
constexpr unsigned int kListGetTextLength = 394;  // wParam index; bytes
constexpr unsigned int kListGetCount = 395;       // answers the entries, -1 on error
constexpr unsigned int kEditLimitText = 1045;     // wParam: most characters the user can type

// The handle of a control, 0 when the dialog has none of that id.
unsigned long GetDlgItem(unsigned long window, int id);
void CheckDlgButton(unsigned long window, int id, unsigned int state);  // 0 or 1
unsigned int IsDlgButtonChecked(unsigned long window, int id);
// control: from GetDlgItem.  Returns the state before.
bool EnableWindow(unsigned long control, bool enable);
long SendMessage(unsigned long control, unsigned int message, unsigned long wParam, long lParam);
// Sends kMessageTimer every `milliseconds` until the dialog ends.  Returns the id, 0 on failure.
unsigned long SetTimer(unsigned long window, unsigned long id, unsigned int milliseconds, void* procedure);
void EndDialog(unsigned long window, long result);
// Text of a control into text[size], terminated; returns its length in bytes.
unsigned int GetDlgItemText(unsigned long window, int id, char* text, int size);
void UIXSetDlgItemText(unsigned long window, int id, const char* text);
bool UIXIsWindowVisible(unsigned long control);
void WINShowWindow(unsigned long control, int code);  // kShowHidden or kShowVisible
// Index of the entry that equals text exactly, -1 when there is none.
long UIXListboxFindExactString(unsigned long window, int id, const char* text);
// Appends an entry; its index, -1 when the list cannot take it.
long UIXListboxAddItem(unsigned long window, int id, const char* text);
// The control id of a command that carries a message handle.
unsigned int LookupCommandMsgID(unsigned long wParam);
// Lets the user choose a local file; path[size], terminated.  413 when the user cancelled.
STATUS DeskBrowseGetLocalFile(unsigned long window, char* path, WORD size);
// Runs a dialog modally; returns what EndDialog was given, -1 when it could not be opened.
long UIXDialogBox(unsigned long parent, unsigned int resource, DialogProcedure procedure);
// Modal message box; 1 when the user chose OK.
int UIXMessageBox(WORD window, const char* text, const char* caption, WORD flags, int reserved);

}  // extern "C"
