// client/import/calendar_note.h: an entry of a calendar as a note.
#pragma once

#include <cstdint>
#include <string>

#include "client/import/calendar_occurrences.h"
#include "client/import/calendar_zone.h"
#include "client/import/source_reader.h"
#include "client/store/note.h"

namespace pavex {

enum class CalendarKind { kEvent, kTask, kJournal };

struct CalendarNote {
    Note note;
    Revision revision;
    std::string notice;  // what is not in the note; empty: nothing
    // Hash of what the note says.  Times that programs write anew at every export do not count.
    std::string digest;
};

// Makes the note of an event, a task or a journal entry.
//   now  seconds since 1970: which occurrences are past, and how a task stands.
// Returns false with *reason when it cannot be one, for want of a start for instance.
bool MakeCalendarNote(CalendarKind kind, const CalendarSeries& series, CalendarZones& zones, int64_t now,
                      CalendarNote* made, std::string* reason);

}  // namespace pavex
