// client/windows/control_messages.cpp: the messages that SendMessage takes.
#include <cstdint>
#include <cstring>

#include "client/windows/dialog.h"
#include "client/windows/window_table.h"
#include "platform/windows.h"

namespace {

using pavex::Control;
using pavex::ControlKind;

constexpr long kListError = -1;

bool HasEntry(const Control& list, unsigned long index)
{
    return index < list.entries.size();
}

long DeleteEntry(Control& list, unsigned long index, long /*lParam*/)
{
    if (!HasEntry(list, index))
        return kListError;
    const auto position = static_cast<long>(index);
    list.entries.erase(list.entries.begin() + position);
    if (list.selected == position)
        list.selected = -1;
    else if (list.selected > position)
        --list.selected;
    return static_cast<long>(list.entries.size());
}

long SetSelection(Control& list, unsigned long index, long /*lParam*/)
{
    if (!HasEntry(list, index))
        return kListError;
    list.selected = static_cast<long>(index);
    return list.selected;
}

long GetSelection(Control& list, unsigned long /*wParam*/, long /*lParam*/)
{
    return list.selected;
}

long GetText(Control& list, unsigned long index, long lParam)
{
    if (!HasEntry(list, index) || lParam == 0)
        return kListError;
    const std::string& entry = list.entries[index];  // at most kMostEntryBytes
    std::memcpy(reinterpret_cast<char*>(lParam), entry.c_str(), entry.size() + 1);
    return static_cast<long>(entry.size());
}

long GetTextLength(Control& list, unsigned long index, long /*lParam*/)
{
    return HasEntry(list, index) ? static_cast<long>(list.entries[index].size()) : kListError;
}

long GetCount(Control& list, unsigned long /*wParam*/, long /*lParam*/)
{
    return static_cast<long>(list.entries.size());
}

long LimitText(Control& edit, unsigned long characters, long /*lParam*/)
{
    edit.editLimit = characters;
    return 0;
}

struct MessageRow {
    unsigned int message;
    ControlKind kind;  // of the controls that take it
    long error;        // the answer when another control, or none, is sent it
    long (*handle)(Control& control, unsigned long wParam, long lParam);
};
constexpr MessageRow kMessages[] = {
    {kListDelete, ControlKind::List, kListError, DeleteEntry},
    {kListSetSelection, ControlKind::List, kListError, SetSelection},
    {kListGetSelection, ControlKind::List, kListError, GetSelection},
    {kListGetText, ControlKind::List, kListError, GetText},
    {kListGetTextLength, ControlKind::List, kListError, GetTextLength},
    {kListGetCount, ControlKind::List, kListError, GetCount},
    {kEditLimitText, ControlKind::Edit, 0, LimitText},
};

}  // namespace

long SendMessage(unsigned long control, unsigned int message, unsigned long wParam, long lParam)
{
    Control* found = pavex::FindControl(control);
    for (const MessageRow& row : kMessages) {
        if (row.message == message)
            return found != nullptr && found->kind == row.kind ? row.handle(*found, wParam, lParam) : row.error;
    }
    return 0;
}
