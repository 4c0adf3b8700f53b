// dialog/controls.cpp: reading and setting the dialog's controls.
#include "dialog/controls.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "dialog/control_ids.h"
#include "platform/windows.h"
#include "settings/progress.h"
#include "strings/string_resources.h"

namespace {

constexpr int kFrequencyTextBytes = 19;
constexpr size_t kMostTranslatedBytes = 65535;  // what a WORD length can say

long SendToList(unsigned long window, unsigned int message, unsigned long wParam, long lParam)
{
    return SendMessage(GetDlgItem(window, kListDatabases), message, wParam, lParam);
}

}  // namespace

bool IsChecked(unsigned long window, int id)
{
    return IsDlgButtonChecked(window, id) == 1;
}

void EnableControl(unsigned long window, int id, bool enable)
{
    EnableWindow(GetDlgItem(window, id), enable);
}

void ShowControl(unsigned long window, int id, bool show)
{
    WINShowWindow(GetDlgItem(window, id), show ? kShowVisible : kShowHidden);
}

bool IsControlVisible(unsigned long window, int id)
{
    return UIXIsWindowVisible(GetDlgItem(window, id));
}

uint32_t FrequencyShown(unsigned long window)
{
    char text[kFrequencyTextBytes] = "";
    GetDlgItemText(window, kEditFrequency, text, sizeof text);
    // What atoi gives, without its undefined overflow; a negative number becomes a large one.
    return static_cast<uint32_t>(std::strtol(text, nullptr, 10));
}

long ListCount(unsigned long window)
{
    return SendToList(window, kListGetCount, 0, 0);
}

std::optional<std::string> ListEntry(unsigned long window, long index)
{
    char path[kMaxDbPathBytes + 1] = "";
    if (index < 0 ||
        SendToList(window, kListGetText, static_cast<unsigned long>(index), reinterpret_cast<long>(path)) < 0)
        return std::nullopt;
    path[kMaxDbPathBytes] = '\0';
    return path;
}

long ListSelection(unsigned long window)
{
    return SendToList(window, kListGetSelection, 0, 0);
}

void SelectListEntry(unsigned long window, long index)
{
    SendToList(window, kListSetSelection, static_cast<unsigned long>(index), 0);
}

void SetControlText(unsigned long window, int id, const CString& text, unsigned short maxBytes)
{
    const std::string native = text.toString();
    std::vector<char> scs(static_cast<size_t>(maxBytes) + 1);
    const auto length = static_cast<unsigned short>(std::min(native.size(), kMostTranslatedBytes));
    scs[TranslateText(native.c_str(), length, scs.data(), maxBytes, true)] = '\0';
    UIXSetDlgItemText(window, id, scs.data());
}
