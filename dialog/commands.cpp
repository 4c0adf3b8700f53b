// dialog/commands.cpp: what each control does when the user uses it.
#include <algorithm>

#include "addin/lifecycle.h"
#include "addin/pass.h"
#include "dialog/control_ids.h"
#include "dialog/controls.h"
#include "dialog/dialog_steps.h"
#include "dialog/settings_dialog.h"
#include "dialog/status_display.h"
#include "platform/windows.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "strings/cstring.h"
#include "strings/string_ids.h"
#include "strings/string_resources.h"

namespace {

constexpr unsigned long kHandleCommandBit = 0x80000000UL;
constexpr unsigned long kMarkedCommandBit = 0x40000000UL;
constexpr unsigned long kMark = 0x2000;
constexpr unsigned long kIdMask = 0xFFFF;

int CommandId(unsigned long wParam)
{
    if (wParam & kHandleCommandBit)
        return static_cast<int>(LookupCommandMsgID(wParam));
    if (wParam & kMarkedCommandBit)
        return static_cast<int>(wParam & ~kMark & kIdMask);  // ids have 16 bits
    return static_cast<int>(wParam & kIdMask);
}

int AskBox(unsigned long window, int textId, int captionId, int flags)
{
    CString text;
    CString caption;
    text.LoadString(textId);
    caption.LoadString(captionId);
    return PlatformMessageBox(window, text, caption, flags);
}

// Indexing shows the user's notes to a search that others at this desk may use, hence the notice.
bool UserAcceptsIndexing(unsigned long window)
{
    return IsBuildForInhouse() || ShouldSkipLegal() ||
           AskBox(window, kStringEnableNotice, kStringEnableCaption, kBoxOkCancelWarning) == kAnswerOk;
}

int Cancel(unsigned long window)
{
    EndDialog(window, kButtonCancel);
    return 1;
}

int Ok(unsigned long window)
{
    return SaveDialog(window, true);
}

int Apply(unsigned long window)
{
    return SaveDialog(window, false);
}

int SwitchIndexing(unsigned long window)
{
    if (!IsChecked(window, kCheckEnabled)) {
        EnableDialogItems(window, false);
        SetApplyButton(window);
    } else if (UserAcceptsIndexing(window)) {
        EnableDialogItems(window, true);
        SetApplyButton(window);
        SetListButtons(window);  // a full list takes no more, an empty one has nothing to remove
    } else {
        CheckDlgButton(window, kCheckEnabled, 0);
        EnableDialogItems(window, false);
    }
    SetDialogInstructions(window);
    PutStatus(window);
    return 0;
}

int ChangeSelection(unsigned long window)
{
    PutStatus(window);
    SetApplyButton(window);
    return 0;
}

void ListDatabase(unsigned long window, const char* path)
{
    const long index = AddToFileList(window, path);
    if (index < 0) {
        AskBox(window, kStringListFull, kStringListFullCaption, kBoxOk);
        return;
    }
    SelectListEntry(window, index);
    SetApplyButton(window);
    SetListButtons(window);
}

int AddDatabase(unsigned long window)
{
    bSaveOnExit = true;  // also when nothing is chosen: who adds wants to save
    char path[kMaxDbPathBytes] = "";
    if (DeskBrowseGetLocalFile(window, path, sizeof path) != kStatusCancelled &&
        VerifyDatabase(window, path, nullptr) == 0)
        ListDatabase(window, path);
    return 0;
}

int RemoveDatabase(unsigned long window)
{
    const long selected = ListSelection(window);
    if (selected >= 0) {
        const unsigned long list = GetDlgItem(window, kListDatabases);
        const long left = SendMessage(list, kListDelete, static_cast<unsigned long>(selected), 0);
        if (left > 0)
            SelectListEntry(window, std::max(selected - 1, 0L));
    }
    SetListButtons(window);
    SetApplyButton(window);
    return 0;
}

int ChangeOption(unsigned long window)
{
    SetApplyButton(window);
    return 0;
}

struct CommandRow {
    int id;
    int (*handle)(unsigned long window);  // 1 when it ended the dialog
};
constexpr CommandRow kCommands[] = {
    {kButtonCancel, Cancel},
    {kButtonOk, Ok},
    {kButtonApply, Apply},
    {kCheckEnabled, SwitchIndexing},
    {kListDatabases, ChangeSelection},
    {kButtonAdd, AddDatabase},
    {kButtonRemove, RemoveDatabase},
    {kCheckEncrypted, ChangeOption},
    {kCheckDrafts, ChangeOption},
    {kCheckHistory, ChangeOption},
    {kCheckDiscussion, ChangeOption},
    {kCheckIdle, ChangeOption},
    {kCheckReindex, ChangeOption},
    {kEditFrequency, ChangeOption},
};

}  // namespace

int HandleCommand(unsigned long window, unsigned long wParam)
{
    const int id = CommandId(wParam);
    for (const CommandRow& row : kCommands) {
        if (row.id == id)
            return row.handle(window);
    }
    return 0;
}
