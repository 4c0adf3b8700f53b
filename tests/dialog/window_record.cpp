// tests/dialog/window_record.cpp: the wrappers of the recorded calls.
#include "tests/dialog/window_record.h"

#include "client/windows/dialog.h"
#include "client/windows/window_table.h"

namespace {

WindowRecord* current = nullptr;

std::string IdOf(unsigned long control)
{
    const pavex::Control* found = pavex::FindControl(control);
    return found == nullptr ? "none" : std::to_string(found->id);
}

template <typename... Parts> void RecordChange(const Parts&... parts)
{
    if (current == nullptr)
        return;
    std::string change;
    ((change += (change.empty() ? "" : " ") + std::string(parts)), ...);
    current->changes.push_back(change);
}

void RecordWritten(const std::string& name, const std::string& value)
{
    if (current != nullptr)
        current->written.push_back(name + "=" + value);
}

void RecordRead(int id)
{
    if (current != nullptr)
        current->read.push_back(id);
}

bool IsQuestion(unsigned int message)
{
    return message == kListGetSelection || message == kListGetText || message == kListGetTextLength ||
           message == kListGetCount;
}

}  // namespace

WindowRecord::WindowRecord()
{
    current = this;
}

WindowRecord::~WindowRecord()
{
    current = nullptr;
}

// The names are the linker's.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
bool __real_EnableWindow(unsigned long, bool);
void __real_WINShowWindow(unsigned long, int);
void __real_CheckDlgButton(unsigned long, int, unsigned int);
unsigned int __real_IsDlgButtonChecked(unsigned long, int);
unsigned int __real_GetDlgItemText(unsigned long, int, char*, int);
void __real_UIXSetDlgItemText(unsigned long, int, const char*);
long __real_UIXListboxAddItem(unsigned long, int, const char*);
long __real_SendMessage(unsigned long, unsigned int, unsigned long, long);
unsigned long __real_SetTimer(unsigned long, unsigned long, unsigned int, void*);
void __real_OSSetEnvironmentInt(const char*, int);
void __real_OSSetEnvironmentVariable(const char*, const char*);

bool __wrap_EnableWindow(unsigned long control, bool enable)
{
    RecordChange("enable", IdOf(control), enable ? "1" : "0");
    return __real_EnableWindow(control, enable);
}

void __wrap_WINShowWindow(unsigned long control, int code)
{
    RecordChange("show", IdOf(control), std::to_string(code));
    __real_WINShowWindow(control, code);
}

void __wrap_CheckDlgButton(unsigned long window, int id, unsigned int state)
{
    RecordChange("check", std::to_string(id), std::to_string(state));
    __real_CheckDlgButton(window, id, state);
}

unsigned int __wrap_IsDlgButtonChecked(unsigned long window, int id)
{
    RecordRead(id);
    return __real_IsDlgButtonChecked(window, id);
}

unsigned int __wrap_GetDlgItemText(unsigned long window, int id, char* text, int size)
{
    RecordRead(id);
    return __real_GetDlgItemText(window, id, text, size);
}

void __wrap_UIXSetDlgItemText(unsigned long window, int id, const char* text)
{
    RecordChange("text", std::to_string(id), text);
    __real_UIXSetDlgItemText(window, id, text);
}

long __wrap_UIXListboxAddItem(unsigned long window, int id, const char* text)
{
    RecordChange("add", std::to_string(id), text);
    return __real_UIXListboxAddItem(window, id, text);
}

long __wrap_SendMessage(unsigned long control, unsigned int message, unsigned long wParam, long lParam)
{
    if (!IsQuestion(message))
        RecordChange("send", IdOf(control), std::to_string(message), std::to_string(wParam));
    return __real_SendMessage(control, message, wParam, lParam);
}

unsigned long __wrap_SetTimer(unsigned long window, unsigned long id, unsigned int milliseconds, void* procedure)
{
    RecordChange("timer", std::to_string(id), std::to_string(milliseconds));
    return __real_SetTimer(window, id, milliseconds, procedure);
}

void __wrap_OSSetEnvironmentInt(const char* name, int value)
{
    RecordWritten(name, std::to_string(value));
    __real_OSSetEnvironmentInt(name, value);
}

void __wrap_OSSetEnvironmentVariable(const char* name, const char* value)
{
    RecordWritten(name, value == nullptr ? "(none)" : value);
    __real_OSSetEnvironmentVariable(name, value);
}
}
// NOLINTEND(bugprone-reserved-identifier)
