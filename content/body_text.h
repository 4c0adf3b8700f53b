// content/body_text.h: the readable text of a note, as its event's "com.quorvex.pavex.content".
// The store writes a rich text's plain form into a temporary file, which is read back line by line: a
// body of any size passes through bounded buffers.  Indexing thread only; uses FileBuffer and wBuffer,
// and where said Buffer1 and Buffer2.
#pragma once

#include <string>
#include <vector>

#include "metastore/search_engine_event.h"
#include "platform/store.h"
#include "strings/cstring.h"

// Text of an item (null: the store's own body item) without its leading blanks and blank lines.  With a
// compound text the text is added to that instead, and the result is "added to hData buffer"; empty when
// nothing was added.  Empty when the item is absent or empty, or its text cannot be read back.
CString ProcessItemContents(NOTEHANDLE note, const char* item, COMPOUNDHANDLE compound);
// Its two uses: the text itself; true when something was added to the compound text.
CString GetItemContents(NOTEHANDLE note, const char* item);
bool AddItemContents(NOTEHANDLE note, const char* item, COMPOUNDHANDLE compound);
// Text of the first item that the note has of those in the settings' list of body items, or else of
// "Body,DetailedReport"; empty when it has none of them.  Uses Buffer1.
std::wstring FindAndGetItemContents(NOTEHANDLE note);

// Adds the text of an item; for a null item whose text is empty that of FindAndGetItemContents.  Adds an
// empty text too.  reserved has no effect.  Returns 0.  Uses Buffer1 for a null item.
SearchEngineResult IndexItemContents(NOTEHANDLE note, const char* item, bool reserved, SearchEngineEvent& event);
// Adds the text of the whole note, its URL and the marker line, by way of a scratch note that is never
// saved.
//   scratchDb    where the scratch note is made; 0, or when that fails: the note's own database.
//   createFlags  passed on to VLTNoteCreate.
//   render       the note as the client displays it; otherwise its items in stored order.
//   done         out: the text was added.
// Returns 0 also when the text could not be built, with *done false.  Uses Buffer1 and Buffer2.
STATUS IndexNoteContents(NOTEHANDLE note, DBHANDLE scratchDb, DWORD createFlags, bool render, bool* done,
                         SearchEngineEvent& event);

// What WriteItem needs to know, as the context of VLTItemScan.
struct ItemScanContext {
    NOTEHANDLE note;                       // whose items are scanned; borrowed
    COMPOUNDHANDLE compound;               // receives their text; borrowed
    std::vector<CString> richTextWritten;  // lower-cased names: no rich text is written twice
};
// The callback of VLTItemScan that writes one item into the compound text.  Returns the status of adding
// it, 0 for an item without text.  Uses Buffer1.
STATUS WriteItem(WORD spare, WORD itemFlags, const char* name, WORD nameLength, const void* value, DWORD valueBytes,
                 void* context);
