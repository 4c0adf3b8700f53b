// dialog/controls.h: reading and setting the dialog's controls, in the terms the dialog thinks in.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "strings/cstring.h"

// A box counts as checked only when its state is exactly 1.
bool IsChecked(unsigned long window, int id);
void EnableControl(unsigned long window, int id, bool enable);
void ShowControl(unsigned long window, int id, bool show);
bool IsControlVisible(unsigned long window, int id);
// The frequency field's number as atoi reads it.
uint32_t FrequencyShown(unsigned long window);

// Entries of the list of databases; -1 when the list reports an error.
long ListCount(unsigned long window);
// An entry, SCS, at most 256 bytes; none for an index without one.
std::optional<std::string> ListEntry(unsigned long window, long index);
// Index of the selected entry, -1 for none.
long ListSelection(unsigned long window);
void SelectListEntry(unsigned long window, long index);

// Sets a control's text, cut between characters after maxBytes of SCS.
void SetControlText(unsigned long window, int id, const CString& text, unsigned short maxBytes);
