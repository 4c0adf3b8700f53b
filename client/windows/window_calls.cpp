// client/windows/window_calls.cpp: the window library's calls on dialogs and their controls.
// A handle of nothing, a control of another kind or a null pointer is answered, never followed.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "client/store/charset.h"
#include "client/windows/dialog.h"
#include "client/windows/window_table.h"
#include "platform/windows.h"

namespace {

using pavex::Control;
using pavex::ControlKind;
using pavex::Dialog;
using pavex::FindControl;
using pavex::FindDialog;

Control* ControlOf(unsigned long window, int id)
{
    Dialog* dialog = FindDialog(window);
    return dialog == nullptr ? nullptr : dialog->Find(id);
}

Control* ControlOf(unsigned long window, int id, ControlKind kind)
{
    Control* control = ControlOf(window, id);
    return control != nullptr && control->kind == kind ? control : nullptr;
}

}  // namespace

unsigned long GetDlgItem(unsigned long window, int id)
{
    const Control* control = ControlOf(window, id);
    return control == nullptr ? 0 : control->handle;
}

void CheckDlgButton(unsigned long window, int id, unsigned int state)
{
    if (Control* control = ControlOf(window, id, ControlKind::Check))
        control->checked = state == 0 ? 0 : 1;
}

unsigned int IsDlgButtonChecked(unsigned long window, int id)
{
    const Control* control = ControlOf(window, id, ControlKind::Check);
    return control == nullptr ? 0 : control->checked;
}

bool EnableWindow(unsigned long control, bool enable)
{
    Control* found = FindControl(control);
    if (found == nullptr)
        return false;
    const bool before = found->enabled;
    found->enabled = enable;
    return before;
}

unsigned long SetTimer(unsigned long window, unsigned long id, unsigned int milliseconds, void* /*procedure*/)
{
    Dialog* dialog = FindDialog(window);
    return dialog != nullptr && dialog->StartTimer(id, milliseconds) ? id : 0;
}

void EndDialog(unsigned long window, long result)
{
    if (Dialog* dialog = FindDialog(window))
        dialog->End(result);
}

unsigned int GetDlgItemText(unsigned long window, int id, char* text, int size)
{
    if (text == nullptr || size <= 0)
        return 0;
    const Control* control = ControlOf(window, id);
    const std::string_view whole = control == nullptr ? std::string_view() : std::string_view(control->text);
    const size_t length = pavex::ScsPrefix(whole, static_cast<size_t>(size) - 1);
    whole.copy(text, length);
    text[length] = '\0';
    return static_cast<unsigned int>(length);
}

void UIXSetDlgItemText(unsigned long window, int id, const char* text)
{
    if (Control* control = ControlOf(window, id))
        control->text = text == nullptr ? "" : text;
}

bool UIXIsWindowVisible(unsigned long control)
{
    const Control* found = FindControl(control);
    return found != nullptr && found->visible;
}

void WINShowWindow(unsigned long control, int code)
{
    if (Control* found = FindControl(control))
        found->visible = code != kShowHidden;
}

long UIXListboxFindExactString(unsigned long window, int id, const char* text)
{
    const Control* list = ControlOf(window, id, ControlKind::List);
    if (list == nullptr || text == nullptr)
        return -1;
    const auto found = std::find(list->entries.begin(), list->entries.end(), text);
    return found == list->entries.end() ? -1 : found - list->entries.begin();
}

long UIXListboxAddItem(unsigned long window, int id, const char* text)
{
    Control* list = ControlOf(window, id, ControlKind::List);
    if (list == nullptr || text == nullptr || std::strlen(text) > pavex::kMostEntryBytes ||
        list->entries.size() >= pavex::kMostListEntries)
        return -1;
    list->entries.emplace_back(text);
    return static_cast<long>(list->entries.size()) - 1;
}
