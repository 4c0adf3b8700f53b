// dialog/options.h: the check boxes that stand for settings, and the choices a user has made in the dialog.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "dialog/control_ids.h"
#include "settings/settings.h"

// What the controls say when OK or Apply is pressed.
struct DialogChoices {
    bool reset = false;  // index everything again
    bool enabled = false;
    bool encrypted = false;
    bool drafts = false;
    bool idle = false;
    bool history = false;
    bool discussion = false;
    uint32_t frequency = 0;                // minutes
    long listed = 0;                       // entries of the list
    std::vector<std::string> databases{};  // SCS, as many as there are slots for
};

struct OptionRow {
    int control;
    bool (*get)();
    void (*set)(bool);
    bool DialogChoices::*chosen;
};

inline constexpr OptionRow kOptionEnabled = {kCheckEnabled, IsEnabled, SetEnabled, &DialogChoices::enabled};
inline constexpr OptionRow kOptionEncrypted = {kCheckEncrypted, IsIndexingEncrypted, SetIndexingEncrypted,
                                               &DialogChoices::encrypted};
inline constexpr OptionRow kOptionDrafts = {kCheckDrafts, IsIndexingDrafts, SetIndexingDrafts, &DialogChoices::drafts};
inline constexpr OptionRow kOptionIdle = {kCheckIdle, IsIdleIndexing, SetIdleIndexing, &DialogChoices::idle};
inline constexpr OptionRow kOptionHistory = {kCheckHistory, IsIndexingHistory, SetIndexingHistory,
                                             &DialogChoices::history};
inline constexpr OptionRow kOptionDiscussion = {kCheckDiscussion, IsIndexingDiscussion, SetIndexingDiscussion,
                                                &DialogChoices::discussion};

// In the order in which they are shown (the enabling box comes earlier, by itself), read and compared, saved.
inline constexpr const OptionRow* kShownOptions[] = {&kOptionEncrypted, &kOptionIdle, &kOptionDrafts,
                                                     &kOptionDiscussion, &kOptionHistory};
inline constexpr const OptionRow* kReadOptions[] = {&kOptionEnabled, &kOptionEncrypted, &kOptionDrafts,
                                                    &kOptionIdle,    &kOptionHistory,   &kOptionDiscussion};
inline constexpr const OptionRow* kSavedOptions[] = {&kOptionEnabled, &kOptionEncrypted,  &kOptionDrafts,
                                                     &kOptionIdle,    &kOptionDiscussion, &kOptionHistory};
