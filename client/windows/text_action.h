// client/windows/text_action.h: the things a user can do in a dialog, as values and as command lines.
#pragma once

#include <string>
#include <string_view>

namespace pavex {

class Dialog;

enum class ActionKind {
    SetCheck,    // control, on
    TypeText,    // control, text
    Select,      // control (a list), index
    Press,       // control (a button)
    AddFile,     // presses control (a button) with `text` as the file chooser's answer; list in `list`
    RemoveFile,  // selects `text` in `list`, then presses control (a button)
    Tick,        // the dialog's timers pass once
    ShowText,    // prints every control as text
    ShowJson,    // prints every control as one JSON object
    Help,        // prints the commands
};

struct TextAction {
    ActionKind kind = ActionKind::ShowText;
    int control = 0;
    int list = 0;
    bool on = false;
    long index = -1;
    std::string text;     // UTF-8
    bool insist = false;  // SetCheck: a dialog that takes the change back makes the action fail
};

// Each the one way to write an action in code.
// Clicks the check box unless it is so already.
TextAction SetCheckAction(int control, bool on, bool insist = false);
TextAction TypeTextAction(int control, std::string_view utf8);
TextAction SelectAction(int list, long index);
TextAction PressAction(int button);
TextAction AddFileAction(int button, int list, std::string_view path);     // native path, UTF-8
TextAction RemoveFileAction(int button, int list, std::string_view path);  // as listed, or a native path
TextAction TickAction();
TextAction ShowTextAction();
TextAction ShowJsonAction();

// Reads a command line such as "check 3382 on" or "press ok" for a dialog.  False with *error, UTF-8, when
// it cannot be understood.
bool ParseAction(const Dialog& dialog, std::string_view line, TextAction* action, std::string* error);
// One line a command.
std::string ActionHelp();

}  // namespace pavex
