// client/app/window_front_end.h: the front end with real windows, where it is installed and there is a display.
#pragma once

#include <memory>
#include <string>

#include "client/windows/window_plugin.h"

namespace pavex {

// True when the environment names a display.
bool HasDisplay();
// What a program says that can show no window, or shows none any more.  Clauses, and constants.
struct WindowWords {
    const char* textWay;  // what does without a window
    const char* lost;     // the display is gone, and what with it
};
// Of the windows in which settings are made and the add-in indexes.
extern const WindowWords kSettingsWindowWords;

// Null, with *error, a line, saying why no window can be opened and what does without.  closeRequest: see
// WindowPluginOptions.  Ends the program with such a line when the display that the environment names cannot be used:
// no thread may run yet.
std::unique_ptr<WindowFrontEnd> LoadWindowFrontEnd(const WindowWords& words, int closeRequest, std::string* error);

// On the main thread, for as long as windows are shown: the toolkit calls exit() when it loses the display, and static
// objects would be destroyed under the indexing thread.  The program then ends before that, with one line.
class DisplayGuard {
public:
    explicit DisplayGuard(const WindowWords& words);
    ~DisplayGuard();
    DisplayGuard(const DisplayGuard&) = delete;
    DisplayGuard& operator=(const DisplayGuard&) = delete;
};

}  // namespace pavex
