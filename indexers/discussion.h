// indexers/discussion.h: a discussion posting as a metadata event.
// Indexing thread only: the scratch buffers are shared.
#pragma once

#include "addin/index_context.h"
#include "platform/store.h"

// Indexes an open posting, or removes its entry when its creation time cannot be read.
//   note  borrowed.  0: last status 551, false.
//   context  last status (0, 549 removed instead, 551) and blank result are set.
// True when the event was sent or the removal succeeded.
bool IndexDiscussionNote(NOTEHANDLE note, INDEXCONTEXT* context);
