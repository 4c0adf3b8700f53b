// tests/dialog/window_record.h: what the dialog does to its controls and to the ini file, in order.
// The linker routes the calls through window_record.cpp (--wrap); the dialog's code has no line for it.
#pragma once

#include <string>
#include <vector>

// Records while it lives; one at a time.
class WindowRecord {
public:
    WindowRecord();
    ~WindowRecord();
    WindowRecord(const WindowRecord&) = delete;
    WindowRecord& operator=(const WindowRecord&) = delete;

    std::vector<std::string> changes;  // "enable 3384 1", "show 3384 0", "check 3382 1", "text 3399 <162>", ...
    std::vector<std::string> written;  // ini variables, "GDSIndexEnabled=1"
    std::vector<int> read;             // check boxes and edit fields that were asked for
};
