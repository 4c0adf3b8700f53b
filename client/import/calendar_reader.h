// client/import/calendar_reader.h: iCalendar files: events, tasks and journal entries.
#pragma once

#include "client/import/source_reader.h"

namespace pavex {

// True for a file that begins with BEGIN:VCALENDAR, after a byte order mark and empty lines.
bool LooksLikeCalendar(const SourceFile& file);

// Hands out the entries, each with all instances that are changed one by one, in the order of the file.  Read twice:
// first where the entries lie, then one after the other, so that only the largest is in memory.  What
// follows a line that breaks the structure is read on as well as it can be, and the place is reported.
bool ReadCalendar(const SourceFile& file, const ImportOptions& options, EntryHandler& handler);

}  // namespace pavex
