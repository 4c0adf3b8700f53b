// client/app/window_front_end.cpp: the front end with real windows, where it is installed and there is a display.
#include "client/app/window_front_end.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "client/app/command.h"
#include "client/app/program_files.h"

namespace pavex {

namespace {

constexpr const char* kDisplayVariables[] = {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};

bool IsSet(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

// The user's own choice, the ini variable "WindowColors".
WindowColors ColorsChosen()
{
    std::string colors;
    if (!GetVariable("WindowColors", &colors))
        return WindowColors::OfSystem;
    return colors == "dark" ? WindowColors::Dark : colors == "light" ? WindowColors::Light : WindowColors::OfSystem;
}

[[noreturn]] void EndAtOnce(const std::string& reason)
{
    const int status = Fail(reason);
    std::cerr.flush();
    std::_Exit(status);
}

std::string WithTextWay(const std::string& reason, const WindowWords& words)
{
    return "no window: " + reason + "; " + words.textWay;
}

// Of the windows that are shown.  The toolkit reports on the thread that opens them, and takes no context along.
const WindowWords* current = &kSettingsWindowWords;

// The toolkit cannot be torn down half made, so nothing is.
void EndOnDisplayFailure(const char* reason)
{
    EndAtOnce(WithTextWay(reason, *current));
}

// The main thread's objects are the first that exit() destroys, before anything that another thread may use.
struct MainThreadEnd {
    bool windowsAreInUse = false;
    MainThreadEnd() = default;
    MainThreadEnd(const MainThreadEnd&) = delete;
    MainThreadEnd& operator=(const MainThreadEnd&) = delete;
    ~MainThreadEnd()
    {
        if (windowsAreInUse)
            EndAtOnce(current->lost);
    }
};
thread_local MainThreadEnd mainThreadEnd;

// Xlib, where the toolkit has loaded it, has lines of its own to say before it calls exit().
void SilenceXlib()
{
    using Handler = int (*)(void* display);
    void* const xlib = dlopen("libX11.so.6", RTLD_LAZY | RTLD_NOLOAD);
    if (xlib == nullptr)
        return;
    if (const auto set = reinterpret_cast<Handler (*)(Handler)>(dlsym(xlib, "XSetIOErrorHandler")))
        set([](void*) { return 0; });
}

}  // namespace

const WindowWords kSettingsWindowWords = {
    "without one, pavex settings --show prints the settings, the options in pavex settings --help change them, and "
    "pavex run stays",
    "the display is gone, and the window with it; settings that were not saved are as they were, and the next start "
    "goes on indexing"};

DisplayGuard::DisplayGuard(const WindowWords& words)
{
    SilenceXlib();
    current = &words;
    mainThreadEnd.windowsAreInUse = true;
}

DisplayGuard::~DisplayGuard()
{
    mainThreadEnd.windowsAreInUse = false;
}

bool HasDisplay()
{
    return std::any_of(std::begin(kDisplayVariables), std::end(kDisplayVariables), IsSet);
}

std::unique_ptr<WindowFrontEnd> LoadWindowFrontEnd(const WindowWords& words, int closeRequest, std::string* error)
{
    current = &words;
    if (!HasDisplay()) {
        *error = WithTextWay("there is no display", words);
        return nullptr;
    }
    const std::string path = FindLibrary("libpavexqt.so");
    void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);  // for the life of the process
    const auto make =
        library == nullptr ? nullptr : reinterpret_cast<MakeWindowFrontEnd>(dlsym(library, kMakeWindowFrontEnd));
    if (make == nullptr) {
        const char* const reason = dlerror();  // null when the library is one without the entry
        *error = WithTextWay(reason == nullptr ? path + " is not the window's library" : reason, words);
        return nullptr;
    }
    WindowPluginOptions options;
    options.closeRequest = closeRequest;
    options.colors = ColorsChosen();
    options.fail = EndOnDisplayFailure;
    return std::unique_ptr<WindowFrontEnd>(make(&options));
}

}  // namespace pavex
