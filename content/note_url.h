// content/note_url.h: the URL that reopens a note in the client, and the marker texts.
// "Pavex:///" + replica id + "//" + UNID, each id as hexadecimal digits.  Lengths are bytes of SCS text,
// terminator not counted.  Indexing thread only.
#pragma once

#include <cstddef>

#include "metastore/search_engine_event.h"
#include "platform/store.h"

constexpr size_t kNoteUrlBytes = 1024;  // the most that the store's formatter writes, terminator included

// The URL into url, terminated (60 bytes).  0, and url untouched, when the note has no database or its
// replica id cannot be read.
WORD GetNoteURL(NOTEHANDLE note, char* url);
// The same for a note known only by its originator id, a deleted one too.
WORD GetNoteOIDURL(DBHANDLE db, ORIGINATORID oid, char* url);
// Adds the URL under `key`; an empty text when there is none, so that the key is always there.
SearchEngineResult IndexNoteURL(NOTEHANDLE note, SearchEngineEvent& event, const char* key);
SearchEngineResult IndexNoteOIDURL(DBHANDLE db, ORIGINATORID oid, SearchEngineEvent& event, const char* key);
// Adds the URL, if there is one, followed by both markers.  reserved has no effect.  Uses Buffer1, wBuffer.
SearchEngineResult IndexNoteURLAndCookies(NOTEHANDLE note, bool reserved, SearchEngineEvent& event, const char* key);

// Fixed tokens in indexed text that ordinary text never contains: a blank, letters, a blank.
constexpr size_t kCookieLeadBytes = 28;
constexpr size_t kCookieBytes = 27;
extern const char CookieLead[kCookieLeadBytes + 1];   // always first
extern const char CookieDefault[kCookieBytes + 1];    // then this one ...
extern const char CookieAlternate[kCookieBytes + 1];  // ... or this one
// Both markers into buffer[size], terminated, as much of them as fits.
WORD GetCookies(bool alternate, char* buffer, WORD size);
