// client/import/message_reader.h: files that hold one message: .eml files, and those of Maildir.
#pragma once

#include <string>

#include "client/import/message_bytes.h"
#include "client/import/source_reader.h"

namespace pavex {

// In a Maildir and when named by the user or ".eml", any file is taken for a message; elsewhere one that
// begins with header fields, a field that only mail has among them.
bool LooksLikeMessage(const SourceFile& file);
bool ReadMessage(const SourceFile& file, const ImportOptions& options, EntryHandler& handler);

// Hands a scanned message to the handler, or says why it is none.  Shared by the mailbox formats.
bool HandOutMessage(MessagePlace place, const ImportOptions& options, EntryHandler& handler);

}  // namespace pavex
