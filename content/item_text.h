// content/item_text.h: one item of a note as text, and as a property of its event.
// Lengths are bytes of SCS text, terminator not counted; 0 means that nothing was written.  All of it
// runs on the indexing thread and uses the scratch buffers that each entry names.
#pragma once

#include "metastore/search_engine_event.h"
#include "platform/store.h"

constexpr int kJoinCrLf = 1;   // entries and line breaks are separated by CR LF
constexpr int kJoinComma = 2;  // ... by ", "; so does every other value than kJoinCrLf

// Text of an item into buffer[size], terminated, at most size - 1 bytes, cut between characters.  A text
// or text list is joined, ", " or as joinMode says; other types come out as the store renders them.
// 0, and an empty buffer, when the item is absent.  Uses no scratch buffer.
WORD MyItemGetText(NOTEHANDLE note, const char* item, char* buffer, WORD size);
WORD GetMultiLineItem(NOTEHANDLE note, const char* item, char* buffer, WORD size, int joinMode);
// True when the store renders at least one byte for the item.
bool ItemHasText(NOTEHANDLE note, const char* item);

// Joins the entries of a text or text-list value into buffer[size], as GetMultiLineItem does.
//   value       the block of the value, its type word first; borrowed, locked for the call.
//   valueBytes  of the value, type word included.
// 0 for a null block, a type that is not textual, an empty list, and a text longer than 65,535 bytes.
WORD ParseMultiLineVLTText(WORD type, BLOCKID value, DWORD valueBytes, char* buffer, WORD size, int joinMode);
// The same from the parts: `count` entries back to back, lengths[count] in bytes.  0 for null pointers.
WORD ParseMultiLineVLTText(const char* entries, const WORD* lengths, WORD count, char* buffer, WORD size, int joinMode);

// The entries of a names list, abbreviated and joined with ", ", into buffer[size], terminated.  Ends
// before a separator once the text has reached size - 3 bytes.  Empty entries are left out.  Uses Buffer2.
WORD GetAddressList(NOTEHANDLE note, const char* item, char* buffer, WORD size);
// The entries of a categories list, codes replaced by their localized names, joined with ", " (no
// separator once the text has reached size - 3 bytes), into buffer[size + 1], terminated.  An entry that
// reaches past size - 1 is cut at size, ends the list, and makes the result size.  Uses Buffer2.
WORD GetCategoryList(NOTEHANDLE note, const char* item, char* buffer, WORD size);

// How IndexItem reads an item.
constexpr int kIndexAddresses = 2;   // GetAddressList
constexpr int kIndexText = 3;        // joined with ", "; so does every value not listed here
constexpr int kIndexCategories = 4;  // GetCategoryList
constexpr int kIndexLines = 5;       // joined with CR LF

// Adds an item of the note under `key` (UTF-8).  An absent or empty item adds nothing, or an empty text
// with addEmpty.  Returns what adding it returned; 0 when nothing was added.  Uses Buffer1, wBuffer and,
// for lists of addresses and categories, Buffer2.
SearchEngineResult IndexItem(NOTEHANDLE note, int mode, const char* item, const char* key, SearchEngineEvent& event,
                             bool addEmpty);
// The same for `length` bytes of SCS text at `buffer`.  A failure is logged when debugging.  Uses wBuffer.
SearchEngineResult IndexItemBuffer(const char* buffer, WORD length, const char* key, SearchEngineEvent& event,
                                   bool addEmpty);
