// content/note_title.h: what a note and its database are called.
// Lengths are bytes of SCS text, terminator not counted.  Indexing thread only.
#pragma once

#include "metastore/search_engine_event.h"
#include "platform/store.h"

// Starts the note's "$WindowTitle" formula.  *compute is 0 when it has none or it cannot be compiled;
// otherwise the caller's: VLTComputeStop.
void UtilGetWinTitleCompute(NOTEHANDLE note, COMPUTEHANDLE* compute);
// Finds the form note that the note's "Form" item names, in the note's database.  False, with *form 0,
// when there is none.  Uses Buffer1.
bool GetNoteForm(NOTEHANDLE note, NOTEID* form);
// The window title, from the formula of the note's form, else of the note itself, into buffer[size],
// terminated, cut between characters.  0, and an empty buffer, without a formula.  Uses Buffer1 (which
// may be the destination).
WORD GetNoteTitle(NOTEHANDLE note, char* buffer, WORD size);

// The database's title into buffer[size], terminated; 0 when it cannot be read.
WORD GetDbTitle(DBHANDLE db, char* buffer, WORD size);
// Adds the database's title under `key`, as IndexItemBuffer does.  Uses Buffer1 and wBuffer.
SearchEngineResult IndexDbTitle(DBHANDLE db, SearchEngineEvent& event, const char* key, bool addEmpty);
