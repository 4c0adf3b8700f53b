// dialog/save.cpp: OK and Apply.
// A database that stays listed keeps its slot, and with it how far it is indexed; the freed slots are
// cleared before new databases get them.
#include <algorithm>
#include <array>
#include <optional>

#include "addin/lifecycle.h"
#include "addin/pass.h"
#include "dialog/control_ids.h"
#include "dialog/controls.h"
#include "dialog/dialog_steps.h"
#include "dialog/options.h"
#include "dialog/settings_dialog.h"
#include "platform/windows.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "strings/cstring.h"
#include "strings/string_ids.h"
#include "strings/string_resources.h"

namespace {

// False when the list cannot be read; the user is told.
bool ReadChoices(unsigned long window, DialogChoices* choices)
{
    choices->reset = IsChecked(window, kCheckReindex);
    choices->listed = ListCount(window);
    if (choices->listed < 0) {
        VerifyDatabase(window, "", nullptr);
        return false;
    }
    const long stored = std::min<long>(choices->listed, kDatabaseSlots);
    for (long index = 0; index < stored; ++index)
        if (const std::optional<std::string> path = ListEntry(window, index))
            choices->databases.push_back(*path);
    for (const OptionRow* option : kReadOptions)
        choices->*option->chosen = IsChecked(window, option->control);
    choices->frequency = FrequencyShown(window);
    return true;
}

// True when notes that were passed over before may now belong into the index, or the other way round.
// Discussion notes that are there already do no harm when they are no longer wanted.
bool AreOptionsWidened(const DialogChoices& choices)
{
    return choices.encrypted != IsIndexingEncrypted() || choices.drafts != IsIndexingDrafts() ||
           (choices.discussion && !IsIndexingDiscussion());
}

bool UserAcceptsReindex(unsigned long window)
{
    CString question;
    CString caption;
    question.LoadString(kStringReindexQuestion);
    caption.LoadString(kStringReindexCaption);
    return PlatformMessageBox(window, question, caption, kBoxOkCancelQuestion) == kAnswerOk;
}

// Settles choices->reset.  False when the user gives the save up.
bool DecideReset(unsigned long window, DialogChoices* choices)
{
    if (JustRegistered() != 0) {
        SetJustRegistered(0);
        return true;
    }
    const bool databasesBefore = numIniFiles >= 1;
    const bool databasesNow = choices->listed >= 1;
    if (choices->reset || !choices->enabled || !AreOptionsWidened(*choices) || !databasesBefore || !databasesNow)
        return true;
    choices->reset = UserAcceptsReindex(window);
    return choices->reset;
}

void StoreDatabases(const std::vector<std::string>& databases)
{
    std::array<bool, kDatabaseSlots> kept{};
    std::vector<const char*> added;
    for (const std::string& path : databases) {
        const int slot = GetDbIndex(path.c_str());
        if (slot >= 0)
            kept[static_cast<size_t>(slot)] = true;
        else
            added.push_back(path.c_str());
    }
    auto next = added.begin();
    for (int slot = 0; slot < kDatabaseSlots; ++slot) {
        if (kept[static_cast<size_t>(slot)])
            continue;
        SetDbPath(slot, nullptr);
        SetDbTimestamp(slot, nullptr, nullptr, 0, 0, 0);
        if (next != added.end())
            SetDbPath(slot, *next++);
    }
    numIniFiles = static_cast<int>(std::count(kept.begin(), kept.end(), true) + (next - added.begin()));
}

// False when the dialog stays as it is, nothing saved.
bool SaveChoices(unsigned long window)
{
    DialogChoices choices;
    if (!ReadChoices(window, &choices) || !DecideReset(window, &choices))
        return false;
    StoreDatabases(choices.databases);
    for (const OptionRow* option : kSavedOptions)
        option->set(choices.*option->chosen);
    SetIndexingFreq(choices.frequency);
    if (choices.enabled) {
        if (choices.reset)
            StopAndReset();
        StartSoon();
    }
    return true;
}

}  // namespace

int SaveDialog(unsigned long window, bool close)
{
    if (bSaveOnExit && !SaveChoices(window))
        return 0;
    if (close) {
        EndDialog(window, kButtonOk);
        return 1;
    }
    CheckDlgButton(window, kCheckReindex, 0);
    EnableControl(window, kButtonApply, false);
    SetListButtons(window);
    return 0;
}
