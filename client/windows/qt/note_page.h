// client/windows/qt/note_page.h: a note as a page of text with links.
#pragma once

#include <QString>

#include "client/windows/note_view.h"

namespace pavex {

// The page, as HTML.  Nothing of the note is taken for markup.  The address of a link is "note:" and its place in the
// body.
QString PageOfNote(const NoteView& note);

}  // namespace pavex
