// client/windows/window_table.cpp: window handles and what they stand for.
#include "client/windows/window_table.h"

#include <map>

#include "client/windows/dialog.h"

namespace pavex {

namespace {

constexpr unsigned long kGreatestHandle = 65535;

struct WindowEntry {
    Dialog* dialog;
    int controlId;  // 0: the dialog itself
};

std::map<unsigned long, WindowEntry>& Windows()
{
    static std::map<unsigned long, WindowEntry> windows;
    return windows;
}

const WindowEntry* FindEntry(unsigned long handle)
{
    const auto found = Windows().find(handle);
    return found == Windows().end() ? nullptr : &found->second;
}

}  // namespace

unsigned long RegisterWindow(Dialog* dialog, int controlId)
{
    // Handles go round, so that one kept by mistake does not soon name another window.
    static unsigned long last = 0;
    for (unsigned long tried = 0; tried < kGreatestHandle; ++tried) {
        last = last % kGreatestHandle + 1;
        if (Windows().try_emplace(last, WindowEntry{dialog, controlId}).second)
            return last;
    }
    return 0;
}

void UnregisterWindow(unsigned long handle)
{
    Windows().erase(handle);
}

Dialog* FindDialog(unsigned long window)
{
    const WindowEntry* entry = FindEntry(window);
    return entry != nullptr && entry->controlId == 0 ? entry->dialog : nullptr;
}

Control* FindControl(unsigned long control)
{
    const WindowEntry* entry = FindEntry(control);
    return entry != nullptr && entry->controlId != 0 ? entry->dialog->Find(entry->controlId) : nullptr;
}

}  // namespace pavex
