// dialog/settings_dialog.cpp: the dialog procedure, and what keeps the controls consistent with each other.
#include "dialog/settings_dialog.h"

#include "addin/lifecycle.h"
#include "dialog/control_ids.h"
#include "dialog/controls.h"
#include "dialog/dialog_steps.h"
#include "dialog/options.h"
#include "dialog/status_display.h"
#include "platform/windows.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "strings/string_ids.h"

namespace {

constexpr unsigned short kInstructionBytes = 1023;

// What only matters while indexing is on, in the order in which it is enabled.
constexpr int kDependentControls[] = {kCheckEncrypted, kCheckDrafts,   kCheckIdle,     kCheckDiscussion,
                                      kCheckHistory,   kListDatabases, kEditFrequency, kCheckReindex,
                                      kLabelFrequency, kLabelMinutes,  kButtonAdd,     kButtonRemove};

// The content of the dialog, in the order in which it is shown.
constexpr int kContentControls[] = {kCheckEnabled,      kCheckEncrypted,     kCheckDrafts,        kCheckIdle,
                                    kCheckHistory,      kCheckDiscussion,    kListDatabases,      kEditFrequency,
                                    kTextOverallStatus, kTextSelectedStatus, kTextActivityStatus, kLabelFrequency,
                                    kLabelMinutes,      kCheckReindex,       kLabelDatabases};

// Shown with the content, unless the administrator has fixed the list.
constexpr int kListButtons[] = {kButtonAdd, kButtonRemove};

}  // namespace

int DlgProc(unsigned long window, unsigned int message, unsigned long wParam, long /*lParam*/)
{
    switch (message) {
    case kMessageInitialize:
        InitializeDialog(window);
        return 0;
    case kMessageCommand:
        return HandleCommand(window, wParam);
    case kMessageTimer:
        PutStatus(window);
        return 0;
    default:
        return 0;
    }
}

bool IsSomethingDifferent(unsigned long window)
{
    for (const OptionRow* option : kReadOptions) {
        if (IsChecked(window, option->control) != option->get())
            return true;
    }
    if (FrequencyShown(window) != GetIndexingFreq())
        return true;
    const long count = ListCount(window);
    if (count != numIniFiles)
        return true;
    for (long index = 0; index < count; ++index) {
        const std::optional<std::string> path = ListEntry(window, index);
        if (!path || GetDbIndex(path->c_str()) < 0)
            return true;
    }
    return false;
}

void SetApplyButton(unsigned long window)
{
    const bool apply =
        IsSomethingDifferent(window) || (IsControlVisible(window, kCheckReindex) && IsChecked(window, kCheckReindex));
    EnableControl(window, kButtonApply, apply);
}

void EnableDialogItems(unsigned long window, bool enable)
{
    for (const int id : kDependentControls)
        EnableControl(window, id, enable);
    SetApplyButton(window);
}

void SetListButtons(unsigned long window)
{
    const bool enabled = IsChecked(window, kCheckEnabled);
    const long count = ListCount(window);
    EnableControl(window, kButtonAdd, enabled && count < kDatabaseSlots);
    EnableControl(window, kButtonRemove, enabled && count >= 1);
}

void SetDialogInstructions(unsigned long window)
{
    CString instructions;
    instructions.LoadString(IsChecked(window, kCheckEnabled) ? kStringInstructionsOn : kStringInstructionsOff);
    SetControlText(window, kTextInstructions, instructions, kInstructionBytes);
}

void ShowControls(unsigned long window, bool show)
{
    for (const int id : kContentControls)
        ShowControl(window, id, show);
    if (!HasAdminLockFiles()) {
        for (const int id : kListButtons)
            ShowControl(window, id, show);
    }
    if (show)
        SetApplyButton(window);
    else
        EnableControl(window, kButtonApply, false);
    bSaveOnExit = show;
}

long AddToFileList(unsigned long window, const char* path)
{
    const long index = UIXListboxFindExactString(window, kListDatabases, path);
    return index >= 0 ? index : UIXListboxAddItem(window, kListDatabases, path);
}

void SetIndexingStatus(unsigned long window)
{
    PutStatus(window);
}
