// indexers/task.h: a task as a metadata event.
// Indexing thread only: the pair arrays and scratch buffers are shared.
#pragma once

#include "addin/index_context.h"
#include "platform/store.h"

// Indexes an open task, or removes its entry when it has no "CalendarDateTime" or no modification time.
//   note  borrowed.  0: last status 551, false.
//   context  last status (0, 549 removed instead, 551) and blank result are set.
// True when the event was sent or the removal succeeded.
bool IndexTaskNote(NOTEHANDLE note, INDEXCONTEXT* context);
