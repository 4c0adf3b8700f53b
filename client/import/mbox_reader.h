// client/import/mbox_reader.h: mailboxes that are one file, in every dialect of mbox.
#pragma once

#include "client/import/source_reader.h"

namespace pavex {

// True for a file that begins with a separator line.  An empty file is a mailbox without messages.
bool LooksLikeMbox(const SourceFile& file);

// Hands out the messages in order, in one walk through the file: a mailbox of many gigabytes takes the
// memory of a small one.  A separator is the file's first line, or one after an empty line, that begins
// with "From " and holds a sender and a date; a sentence that only begins so stays in its message.  A
// Content-Length is believed only where it leads exactly to the next separator or the end of the file.
bool ReadMbox(const SourceFile& file, const ImportOptions& options, EntryHandler& handler);

}  // namespace pavex
