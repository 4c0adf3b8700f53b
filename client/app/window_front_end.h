// client/app/window_front_end.h: the front end with real windows, where it is installed and there is a display.
#pragma once

#include <memory>
#include <string>

#include "client/windows/window_plugin.h"

namespace pavex {

// True when the environment names a display.
bool HasDisplay();
// A line that says why there is no window, and what does without one.
std::string WithTextWay(const std::string& reason);
// Null, with *error, such a line, saying why no window can be opened.  closeRequest: see WindowPluginOptions.  Ends the
// program with one line when the display that the environment names cannot be used: no thread may run yet.
std::unique_ptr<WindowFrontEnd> LoadWindowFrontEnd(int closeRequest, std::string* error);

// On the main thread, for as long as windows are shown: the toolkit calls exit() when it loses the display, and static
// objects would be destroyed under the indexing thread.  The program then ends before that, with one line.
class DisplayGuard {
public:
    DisplayGuard();
    ~DisplayGuard();
    DisplayGuard(const DisplayGuard&) = delete;
    DisplayGuard& operator=(const DisplayGuard&) = delete;
};

}  // namespace pavex
