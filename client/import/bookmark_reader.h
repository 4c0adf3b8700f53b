// client/import/bookmark_reader.h: bookmark files of browsers (the Netscape format).
#pragma once

#include "client/import/source_reader.h"

namespace pavex {

// True for HTML that says it is such a file, or is a list of links in its way.
bool LooksLikeBookmarks(const SourceFile& file);

// Hands out a bookmark that leads to a note as an entry of the history, any other as a note with the address.
// The folders it lies in and its tags are its categories.
bool ReadBookmarks(const SourceFile& file, const ImportOptions& options, EntryHandler& handler);

}  // namespace pavex
