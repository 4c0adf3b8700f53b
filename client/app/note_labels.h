// client/app/note_labels.h: what the window of a note calls things, in the user's language.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "client/windows/note_view.h"

namespace pavex {

// A text of the table "note" (resources/LANG.lproj/note.strings): its key there, and the text in English.
struct NoteTextRow {
    const char* key;
    const char* english;
};
// All of them.
std::span<const NoteTextRow> NoteTexts();

// By its key; in English where the user's language has none.
std::string NoteText(std::string_view key);
NoteWindowTexts WindowTextsOfNotes();

// What an item that everybody reads is called; none for any other.
std::optional<std::string> LabelOfItem(const std::string& item);

}  // namespace pavex
