// indexers/classification.h: which kind a note is, by its form and, for mail and history, by the items
// it has.
// Each predicate is false for note 0 and changes nothing.  A store error counts as an absent item.
// Indexing thread only.
#pragma once

#include "platform/store.h"

bool IsCalendarNote(NOTEHANDLE note);
bool IsTaskNote(NOTEHANDLE note);
bool IsContactNote(NOTEHANDLE note);
bool IsJournalNote(NOTEHANDLE note);
bool IsDiscussionNote(NOTEHANDLE note);
// One of the mail forms, or else enough of the items that only a message has.
bool IsMailNote(NOTEHANDLE note);
// A history entry's form, and both of the items "Title" and "URL".
bool IsHistoryNote(NOTEHANDLE note);

// True when the note has an item of that name, of any type and value.
//   note  borrowed, open.    item  ASCII, terminated, compared without regard to case.
bool HasItem(NOTEHANDLE note, const char* item);
