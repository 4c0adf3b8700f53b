// dialog/initialize.cpp: filling the dialog when it opens.
// A user without saved databases is offered the obvious ones: mail and the address book.  They count as a
// change, so that Apply saves them.
#include <string>

#include "addin/lifecycle.h"
#include "addin/pass.h"
#include "content/paths.h"
#include "dialog/control_ids.h"
#include "dialog/controls.h"
#include "dialog/dialog_steps.h"
#include "dialog/options.h"
#include "dialog/settings_dialog.h"
#include "dialog/status_display.h"
#include "platform/windows.h"
#include "settings/progress.h"
#include "settings/settings.h"

namespace {

constexpr const char* kAddressBookFile = "names.vlt";
constexpr unsigned long kFrequencyDigits = 2;

void ListSavedDatabases(unsigned long window)
{
    numIniFiles = 0;
    for (int slot = 0; slot < kDatabaseSlots; ++slot) {
        char path[kMaxDbPathBytes + 1] = "";
        if (!GetDbPath(slot, path, kMaxDbPathBytes))
            continue;
        AddToFileList(window, path);
        ++numIniFiles;
    }
}

// A file in the client's data directory, as path[kPathBytes].  False when there is no such path.
bool PathInDataDirectory(const char* file, char* path)
{
    char directory[kPathBytes] = "";
    OSGetDataDirectory(directory);
    MyPathConstruct(directory, file, path);
    return OSPathCanonicalize(path) == 0;
}

// The user's mail database, as path[kPathBytes].  False when the client does not know one.
bool MailDatabasePath(char* path)
{
    char file[kPathBytes] = "";
    if (!OSGetEnvironmentString("GoogleMailFile", file, sizeof file) &&
        !OSGetEnvironmentString("MailFile", file, sizeof file))
        return false;
    if (!MyPathIsAbsolute(file))
        return PathInDataDirectory(file, path);
    std::string(file).copy(path, kPathBytes - 1);
    return true;
}

void ProposeDatabase(unsigned long window, const char* path)
{
    if (VerifyDatabase(0, path, nullptr) != 0)
        return;
    AddToFileList(window, path);
    SelectListEntry(window, 0);
}

void ProposeDatabases(unsigned long window)
{
    char mail[kPathBytes] = "";
    if (MailDatabasePath(mail))
        ProposeDatabase(window, mail);
    char addressBook[kPathBytes] = "";
    if (PathInDataDirectory(kAddressBookFile, addressBook))
        ProposeDatabase(window, addressBook);
}

void ShowOptions(unsigned long window)
{
    for (const OptionRow* option : kShownOptions)
        CheckDlgButton(window, option->control, option->get() ? 1 : 0);
    UIXSetDlgItemText(window, kEditFrequency, std::to_string(GetIndexingFreq()).c_str());
    SendMessage(GetDlgItem(window, kEditFrequency), kEditLimitText, kFrequencyDigits, 0);
}

}  // namespace

void InitializeDialog(unsigned long window)
{
    if (HasAdminLockFiles()) {
        ShowControl(window, kButtonAdd, false);
        ShowControl(window, kButtonRemove, false);
    }
    bSaveOnExit = true;
    StartSoon();  // the status is of interest now
    CheckDlgButton(window, kCheckEnabled, kOptionEnabled.get() ? 1 : 0);
    ListSavedDatabases(window);
    if (numIniFiles != 0) {
        EnableControl(window, kButtonApply, false);
        SelectListEntry(window, 0);
    } else {
        ProposeDatabases(window);
    }
    ShowOptions(window);
    EnableDialogItems(window, IsChecked(window, kCheckEnabled));
    SetDialogInstructions(window);
    SetListButtons(window);
    PutStatus(window);
    SetTimer(window, kStatusTimer, kStatusPeriodMs, nullptr);
}
