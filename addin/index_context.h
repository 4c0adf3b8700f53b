// addin/index_context.h: the record of one database pass that every indexer reports through.
#pragma once

#include <cstdint>

#include "platform/store.h"

// Zeroed at the start of a pass.  The indexers set lastStatus and blankResult before they return.
struct INDEXCONTEXT {
    uint32_t indexed;        // notes indexed in this pass
    uint32_t skipped;        // notes that no indexer took, no error
    uint32_t errors;         // notes that could not be opened or whose indexer failed
    uint32_t blankFailures;  // removals or blank entries that failed
    uint32_t deleted;        // index entries removed
    uint32_t blankResult;    // SearchEngineResult of the last removal or blank write; 0: success
    uint16_t lastStatus;     // 0 handled, 549 removed instead, 551 no note
    int64_t writtenSize;     // what the last Send reported, sign-extended; nothing reads it
    NOTEID currentNote;
    bool stopped;         // the pass was interrupted and is to be resumed
    DBHANDLE database;    // borrowed
    IDTABLE unreadTable;  // the user's unread notes, or 0; borrowed
    NOTEID resumeNote;    // notes with a smaller id were done before the interruption; 0: none
    bool fullPass;        // started from no stored time: everything is new
    bool history;         // a pass over the history database
};
