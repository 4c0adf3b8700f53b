// client/app/history.h: which notes were opened, as entries of the history database.
#pragma once

#include <functional>
#include <string>

#include "client/store/note.h"
#include "platform/store.h"

namespace pavex {

// Makes the entry of a note, or dates it anew when the note was opened before.  Entries themselves are not
// remembered.  False, with *error, when the history cannot be written.
bool RememberInHistory(const NOTELINK& link, const std::string& title, std::string* error);

struct HistoryEntry {
    std::string title;
    std::string url;
    TIMEDATE opened;
};
// Calls back with each entry, newest first.  False, with *error; no history yet is no failure.
bool ListHistory(const std::function<void(const HistoryEntry&)>& callback, std::string* error);

}  // namespace pavex
