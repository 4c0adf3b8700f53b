// client/store/note_link.h: the address of a note, and the history's entries, which lead to one.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "client/store/note.h"
#include "platform/store.h"

namespace pavex {

constexpr std::string_view kNoteScheme = "Pavex:///";
constexpr char kHistoryFile[] = "bookmark.vlt";  // in the data directory
constexpr char kHistoryForm[] = "HistoryListEntry";

// "Pavex:///", 16 digits of the replica id, "//", 32 digits of the note's id.
std::string UrlOfNote(const TIMEDATE& replica, const UNID& note);
// None for what is no such address, or has zeros where an id must have none: it leads to a view or a whole
// database.  Blanks and slashes at the end do not matter, nor does the scheme's case.
std::optional<NOTELINK> LinkFromUrl(std::string_view url);

// An entry of the history, unsaved: Form, Title, and the link as the rich text of URL.
Note HistoryNote(const NOTELINK& link, std::string_view titleUtf8);
// Where such an entry leads; none for any other note.
std::optional<NOTELINK> LinkOfHistoryNote(const Note& note);

}  // namespace pavex
