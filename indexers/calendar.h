// indexers/calendar.h: a calendar entry as a metadata event, and the time ranges of entries and tasks.
// Indexing thread only: the pair arrays and scratch buffers are shared.
#pragma once

#include "addin/index_context.h"
#include "metastore/search_engine_event.h"
#include "platform/store.h"

// One occurrence; CoreFoundation absolute times, seconds.
struct TimePair {
    double start;
    double end;
};
constexpr WORD kMaxTimePairs = 100;
// Both arrays, one directly behind the other.  They keep what an earlier note left.
extern TimePair StartEndTimes[2 * kMaxTimePairs];
inline constexpr TimePair* StartEndTimes1 = StartEndTimes;                  // the calendar array
inline constexpr TimePair* StartEndTimes2 = StartEndTimes + kMaxTimePairs;  // the task array

// Indexes an open calendar entry, or removes its entry when it has no usable time range.
//   note  borrowed.  0: last status 551, false.
//   context  last status (0, 549 removed instead, 551) and blank result are set.
// True when the event was sent or the removal succeeded.
bool IndexCalendarNote(NOTEHANDLE note, INDEXCONTEXT* context);

// Fills `pairs` (room for kMaxTimePairs; further occurrences are dropped) with the values of
// "CalendarDateTime", each as long as the first value of `startItem` is from that of `endItem`.
//   bound  accepted and ignored: the calendar indexer passes 0.
// Returns the number of pairs, 0 when the note has no usable time range.
WORD FillStartEndTimeArray(NOTEHANDLE note, TimePair* pairs, WORD bound, const char* startItem, const char* endItem);

// Adds "start_date", "end_date" (of a task "due_date") and, as they apply, "duration" and
// "recurrence_pattern".
//   pairs  accepted and ignored: the pairs are always those of StartEndTimes1, for tasks too.
//   count  pairs to report, 0..kMaxTimePairs; 0 adds nothing.
// Returns 0 or the first result that is not.
SearchEngineResult IndexStartEndTimeArray(const TimePair* pairs, WORD count, bool task, SearchEngineEvent& event);
