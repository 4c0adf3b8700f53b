// client/app/note_text.h: notes as people read them.
#pragma once

#include <string>
#include <string_view>

#include "client/store/database.h"

namespace pavex {

// The first value of a text item; empty without one.
std::string FirstText(const Note& note, std::string_view name);

// What a note is called: its subject, or whatever its kind has for one; empty when it has none.
std::string TitleOfNote(const Note& note);

// The values of an item as text, UTF-8, with a line feed for each line break.
std::string LinesOfItem(const Item& item);

// Whether its text may be what a note is called.
bool IsTitleItem(std::string_view name);
// Those whose names begin with '$' are the client's own and not shown.
bool IsShownItem(const Item& item);

struct ReadingStyle {
    bool isBold = false;  // names stand out, by a terminal's sequences
    size_t columns = 0;   // no line is wider; 0: no limit
};

// The whole note as the client shows it: the fields, a "Name: value" line each, then the rich text.
std::string ReadableNote(const Note& note, const ReadingStyle& style);

// Prints the JSON that "note put" takes, with the note's id and URL: one line, or indented for people.
void PrintNoteJson(const Database& database, const Note& note, bool isOneLine);

}  // namespace pavex
