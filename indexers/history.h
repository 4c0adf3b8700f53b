// indexers/history.h: a bookmark of the browsing history as a metadata event.
// A bookmark's "URL" item is rich text that holds a link to another note.
// Indexing thread only: the scratch buffers are shared.
#pragma once

#include "addin/index_context.h"
#include "platform/store.h"

// Indexes an open history entry, or removes its entry when its modification time cannot be read.
//   note  borrowed.  0: last status 551, false.
//   context  last status (0, 549 removed instead, 551) and blank result are set.
// True when the event was sent or the removal succeeded; false, and no file, without a link to a note.
bool IndexHistoryNote(NOTEHANDLE note, INDEXCONTEXT* context);

constexpr WORD kLinkTextBytes = 32769;  // of the buffer that a link's URL is written to

// Record callback of the walk over a bookmark's "URL".  The first link record is decoded and ends the
// walk.  context: char[kLinkTextBytes], gets what RLReadODSMemory writes.
// Returns 413 for a link record, 0 for every other.
STATUS iSiteMapCDEnumProc(const char* record, WORD signature, DWORD recordBytes, void* context);
// Decodes a link record (signature first, recordBytes in all) into url[kLinkTextBytes]: "Pavex:///..."
// with a blank at its end, terminated; empty for a record that is damaged, cut off or no link to a note.
void RLReadODSMemory(const char* record, DWORD recordBytes, char* url);
