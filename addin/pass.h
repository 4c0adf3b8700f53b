// addin/pass.h: one pass over one database slot.
#pragma once

#include "platform/store.h"

// One pass over a slot (0..14, or 15 with history true); returns at once for a slot without a path.
void IndexFile(int slot, bool history);
// Checks that a database can be indexed.
//   window  not 0: a failure is shown there, the path as the caption.
//   path    SCS, may be empty; not changed.
//   handle  out, may be null: the open database (the caller closes it), 0 on failure.
// Returns 0, 259, 513, 540, 788 or the store's own status.
STATUS VerifyDatabase(unsigned long window, const char* path, DBHANDLE* handle);
// Enumerates the notes changed since `since` and records the outcome.  until: in the recovery
// record's or the database's time, out the end time of the table.  Returns the enumeration's status.
STATUS IndexMailDBSinceUntil(int slot, DBHANDLE db, TIMEDATE* since, TIMEDATE* until, NOTEID resumeNote, bool history);
// Called for each entry of the table; context is an INDEXCONTEXT.  719 and 11779 end the pass.
STATUS EnumMailTable(void* context, NOTEID id);
