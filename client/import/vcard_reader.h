// client/import/vcard_reader.h: files of contacts.
#pragma once

#include "client/import/source_reader.h"

namespace pavex {

// True for a file whose first line that is not empty begins a card, whatever its name.
bool LooksLikeVcard(const SourceFile& file);
bool ReadVcards(const SourceFile& file, const ImportOptions& options, EntryHandler& handler);

}  // namespace pavex
