// client/windows/dialog.h: a dialog as a model: controls with their state, timers, and what a user can do.
// The calls of platform/windows.h change the model; front ends show it.  Everything runs on the client's
// main thread.  Texts are SCS, as the dialog procedure gave them; the user's actions take UTF-8.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/windows.h"

namespace pavex {

enum class ControlKind { Button, Check, List, Edit, Text };
// "button", "check", "list", "edit" or "text".
const char* KindName(ControlKind kind);

// Most entries of a list box.
constexpr size_t kMostListEntries = 4096;
// Most bytes of an entry, so that it fits where kListGetText writes it.
constexpr size_t kMostEntryBytes = 256;

struct Control {
    int id = 0;
    ControlKind kind = ControlKind::Text;
    std::string name;                  // short, for command lines
    std::string text;                  // SCS
    unsigned int checked = 0;          // check box: 0 or 1
    std::vector<std::string> entries;  // list box; SCS
    long selected = -1;                // list box; -1: none
    size_t editLimit = SIZE_MAX;       // edit field: most UTF-16 units the user can type
    bool enabled = true;
    bool visible = true;
    unsigned long handle = 0;
};

struct DialogTimer {
    unsigned long id;
    uint32_t periodMs;
    uint64_t dueMs;  // on SteadyMilliseconds
};

// Milliseconds on a clock that only moves forward.
uint64_t SteadyMilliseconds();

struct DialogResource;

class Dialog {
public:
    // Registers the window and its controls for the C calls, until destroyed.
    Dialog(const DialogResource& resource, DialogProcedure procedure);
    ~Dialog();
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;

    unsigned long Window() const { return window_; }
    const std::string& Title() const { return title_; }  // UTF-8
    int DefaultButton() const { return defaultButton_; }
    int CancelButton() const { return cancelButton_; }
    const std::vector<Control>& Controls() const { return controls_; }
    Control* Find(int id);
    const Control* Find(int id) const;
    // By number or short name ("3382", "ok"); null when there is none.
    const Control* FindNamed(std::string_view numberOrName) const;

    // Sends a message to the procedure; 0, nothing sent, once the dialog has ended.
    int Send(unsigned int message, unsigned long wParam, long lParam);
    void End(long result);
    bool Ended() const { return result_.has_value(); }
    long Result() const { return result_.value_or(-1); }  // -1 while it has not ended

    // What a user can do.  False, with *error saying why not (UTF-8) and nothing changed, for what a user
    // could not do either: the control is not there, of another kind, hidden or disabled, or the dialog
    // has ended.
    bool Press(int id, std::string* error);                        // a button
    bool Toggle(int id, std::string* error);                       // a check box
    bool Type(int id, std::string_view utf8, std::string* error);  // the whole text of an edit field
    bool Select(int id, long index, std::string* error);           // an entry of a list box
    bool PressDefault(std::string* error);                         // the Return key

    // Timers: started by SetTimer, sent by the front end.
    bool StartTimer(unsigned long id, uint32_t periodMs);  // false for a period of 0
    const std::vector<DialogTimer>& Timers() const { return timers_; }
    // Sends every timer that is due at `nowMs`, each at most once.
    void SendDueTimers(uint64_t nowMs);
    // Until the next timer is due; none: no timer.
    std::optional<uint64_t> MillisecondsToNextTimer(uint64_t nowMs) const;
    // Sends every timer once, due or not.
    void SendAllTimers();

private:
    Control* Usable(int id, ControlKind kind, std::string* error);

    unsigned long window_ = 0;
    std::string title_;
    int defaultButton_;
    int cancelButton_;
    DialogProcedure procedure_;
    std::vector<Control> controls_;
    std::vector<DialogTimer> timers_;
    std::optional<long> result_;
};

}  // namespace pavex
