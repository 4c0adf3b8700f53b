// indexers/generic.h: a note of no known kind as a metadata event.
// Indexing thread only: the scratch buffers are shared.
#pragma once

#include "addin/index_context.h"
#include "platform/store.h"

// Indexes any open note, or removes its entry when its modification time cannot be read.
//   note  borrowed.  0: last status 551, false.
//   context  last status (0, 549 removed instead, 551) and blank result are set.
// True when the event was sent or the removal succeeded.
bool IndexGenericNote(NOTEHANDLE note, INDEXCONTEXT* context);
