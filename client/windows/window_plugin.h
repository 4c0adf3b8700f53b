// client/windows/window_plugin.h: the front end with real windows, a library that the program loads when it
// is there: a command line takes no window toolkit along.
#pragma once

#include <functional>
#include <string>

#include "client/windows/front_end.h"
#include "client/windows/note_view.h"

namespace pavex {

enum class WindowColors { OfSystem, Light, Dark };

struct WindowPluginOptions {
    // A file descriptor, borrowed: once there is something to read, every window is closed, the dialog
    // abandoned.  -1: none.
    int closeRequest = -1;
    WindowColors colors = WindowColors::OfSystem;
    // Called when the display cannot be used, on the calling thread; does not return.
    void (*fail)(const char* reason) = nullptr;
};

// What the client's own window shows.
struct ClientWindowContent {
    std::string menuText;              // of the add-in's menu entry, UTF-8; empty: it has none
    std::function<void()> openDialog;  // what the entry does
    std::string log;                   // path of the log, which is followed as it grows
};

class WindowFrontEnd : public FrontEnd {
public:
    // Shows the client's window until the user closes it or it is asked to close.
    virtual void RunClient(const ClientWindowContent& content) = 0;
    // Shows a note until the user closes its window or it is asked to close.
    virtual void ShowNote(const NoteWindowContent& content) = 0;
};

}  // namespace pavex

// The one entry, under this name: opens the display.  The front end is the caller's, one a process, used and
// destroyed on the thread that made it.
using MakeWindowFrontEnd = pavex::WindowFrontEnd* (*)(const pavex::WindowPluginOptions* options);
constexpr const char* kMakeWindowFrontEnd = "PavexMakeWindowFrontEnd";
