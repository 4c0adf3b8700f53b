// client/windows/dialog_resources.cpp: the dialogs the client knows.
// A dialog procedure sets every state and the changing texts; what stands here is what it never sets.
#include "client/windows/dialog_resources.h"

namespace pavex {

namespace {

constexpr ControlRow kSearchSettingsControls[] = {
    {3399, ControlKind::Text, "instructions", ""},
    {3382, ControlKind::Check, "enabled", "Index my databases for desktop search"},
    {3398, ControlKind::Text, "databases-label", "Databases to index:"},
    {3383, ControlKind::List, "databases", ""},
    {3384, ControlKind::Button, "add", "Add..."},
    {3385, ControlKind::Button, "remove", "Remove"},
    {3386, ControlKind::Text, "selected-status", ""},
    {3388, ControlKind::Check, "encrypted", "Index encrypted notes"},
    {3389, ControlKind::Check, "drafts", "Index drafts"},
    {3390, ControlKind::Check, "history", "Index the history of visited notes"},
    {3391, ControlKind::Check, "discussion", "Index discussion databases"},
    {3392, ControlKind::Check, "idle", "Index only while the computer is idle"},
    {3394, ControlKind::Text, "frequency-label", "Look for changes every"},
    {3395, ControlKind::Edit, "frequency", ""},
    {3396, ControlKind::Text, "minutes-label", "minutes"},
    {3393, ControlKind::Check, "reindex", "Index everything again from the beginning"},
    {3387, ControlKind::Text, "status", ""},
    {3400, ControlKind::Text, "activity", ""},
    {1, ControlKind::Button, "ok", "OK"},
    {2, ControlKind::Button, "cancel", "Cancel"},
    {3397, ControlKind::Button, "apply", "Apply"},
};

constexpr DialogResource kDialogResources[] = {
    {2070, "Desktop Search Settings", 1, 2, kSearchSettingsControls},
};

constexpr bool IdsDiffer(std::span<const ControlRow> rows)
{
    for (size_t i = 0; i < rows.size(); ++i) {
        for (size_t j = i + 1; j < rows.size(); ++j) {
            if (rows[i].id == rows[j].id)
                return false;
        }
    }
    return true;
}
static_assert(IdsDiffer(kSearchSettingsControls), "a second control of an id could never be reached");

}  // namespace

const DialogResource* FindDialogResource(unsigned int number)
{
    for (const DialogResource& resource : kDialogResources) {
        if (resource.number == number)
            return &resource;
    }
    return nullptr;
}

}  // namespace pavex
