// indexers/mail.h: a mail message as a metadata event.
// Indexing thread only: the scratch buffers are shared.
#pragma once

#include "addin/index_context.h"
#include "metastore/search_engine_event.h"
#include "platform/store.h"

// Indexes an open mail note, or removes the entry of a draft or chat that is not to be indexed.
//   note  borrowed.  0: last status 551, false.
//   context  last status and blank result are set: 0, 549 (removed instead) or 551.
// True when the event was sent or the removal succeeded.
bool IndexMailNote(NOTEHANDLE note, INDEXCONTEXT* context);

// Adds one mail field by the store's number (0 SendTo, 1 CopyTo, 2 Principal or From, 13 BlindCopyTo,
// 123 ReplyTo as address lists; any other as text).  An absent or empty field adds nothing.
//   key  property name, ASCII.
// Returns the result of the addition, 0 when nothing was added.
SearchEngineResult IndexSimpleMailItem(NOTEHANDLE note, unsigned short itemNumber, SearchEngineEvent& event,
                                       const char* key);
