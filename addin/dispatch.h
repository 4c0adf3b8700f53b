// addin/dispatch.h: which indexer gets a note, and the removal of notes from the index.
#pragma once

#include "addin/index_context.h"
#include "metastore/search_engine_event.h"
#include "platform/store.h"

// True when an indexer ran and succeeded.  When none runs, the context is left as it was.
bool IndexNote(NOTEHANDLE note, INDEXCONTEXT* context);
// Removes the entry of an open note.  False for note 0 and when the removal failed.
bool DeleteNoteFromIndex(NOTEHANDLE note, INDEXCONTEXT* context);
// Removes the entry of a note that is known by id, a deleted one too.
bool DeleteNoteIDFromIndex(DBHANDLE db, NOTEID id, INDEXCONTEXT* context);
// Settles the counters where a removal was not possible; writes no file.
bool IndexBlankMail(DBHANDLE db, NOTEID id, INDEXCONTEXT* context);
// Adds `key` (ASCII) with an empty text.
SearchEngineResult IndexBlankItem(SearchEngineEvent& event, const char* key);
