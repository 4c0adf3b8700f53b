// client/windows/dialog_resources.h: the dialogs the client knows, each a table of controls.
// The texts here are English; resource_text.h finds their translations.
#pragma once

#include <span>

#include "client/windows/dialog.h"

namespace pavex {

struct ControlRow {
    int id;
    ControlKind kind;
    const char* name;  // short and unique in its dialog, for command lines
    const char* text;  // initial text, ASCII
};

struct DialogResource {
    unsigned int number;
    const char* title;  // ASCII
    int defaultButton;  // pressed by the Return key
    int cancelButton;   // pressed by the Escape key and by closing the window
    std::span<const ControlRow> controls;
};

// Null when the client has no such dialog.
const DialogResource* FindDialogResource(unsigned int number);

}  // namespace pavex
