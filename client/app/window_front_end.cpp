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

// The toolkit cannot be torn down half made, so nothing is.
void EndOnDisplayFailure(const char* reason)
{
    const int status = Fail(WithTextWay(reason));
    std::cerr.flush();
    std::_Exit(status);
}

}  // namespace

bool HasDisplay()
{
    return std::any_of(std::begin(kDisplayVariables), std::end(kDisplayVariables), IsSet);
}

std::string WithTextWay(const std::string& reason)
{
    return "no window: " + reason +
           "; without one, pavex settings --show prints the settings, the options in pavex settings --help change "
           "them, and pavex run stays";
}

std::unique_ptr<WindowFrontEnd> LoadWindowFrontEnd(int closeRequest, std::string* error)
{
    if (!HasDisplay()) {
        *error = WithTextWay("there is no display");
        return nullptr;
    }
    const std::string path = FindLibrary("libpavexqt.so");
    void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);  // for the life of the process
    const auto make =
        library == nullptr ? nullptr : reinterpret_cast<MakeWindowFrontEnd>(dlsym(library, kMakeWindowFrontEnd));
    if (make == nullptr) {
        *error = WithTextWay(dlerror());
        return nullptr;
    }
    WindowPluginOptions options;
    options.closeRequest = closeRequest;
    options.colors = ColorsChosen();
    options.fail = EndOnDisplayFailure;
    return std::unique_ptr<WindowFrontEnd>(make(&options));
}

}  // namespace pavex
