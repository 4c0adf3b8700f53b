// client/app/note_window.h: a note in a window of its own.
#pragma once

#include <string>

#include "client/store/database.h"
#include "client/windows/note_view.h"

namespace pavex {

// What the window shows of a note: the title, then the items that everybody reads, then the others, then the rich text.
NoteView ViewOfNote(const Note& note);

// Shows the note until its window is closed, and whatever notes the user follows links to, which the history then has,
// too.  False, with *error in one line, when no window can be opened.
//   problem  a line that is shown below the note; empty: none.
bool ShowNoteWindow(const Note& note, const std::string& problem, std::string* error);

// Shows a line until the user has read it: who clicked on a result sees no terminal.
void ShowProblemWindow(const std::string& problem);

}  // namespace pavex
