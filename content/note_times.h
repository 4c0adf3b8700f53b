// content/note_times.h: the store's times as CoreFoundation absolute times.
// Absolute times are whole seconds since 2001-01-01 00:00:00 GMT.  Indexing thread only.
#pragma once

#include "platform/store.h"

// Converts a time; hundredths are dropped, a date without a time of day is midnight GMT.  False with
// *out* untouched when there is no date; false with it written when the date is not a valid one.
bool TIMEDATEtoUTC(const TIMEDATE* time, double& out);
// When the note was last changed, as users see it; failing that the store's own modification time.
bool GetModifiedTime(NOTEHANDLE note, double& out);
// When the note was created.
bool GetCreationTime(NOTEHANDLE note, double& out);
