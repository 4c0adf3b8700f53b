// indexers/contact.h: a person of the address book as a metadata event.
// Indexing thread only: the scratch buffers are shared.
#pragma once

#include "addin/index_context.h"
#include "metastore/search_engine_event.h"
#include "platform/store.h"

// Indexes an open contact, or removes its entry when its modification time cannot be read.
//   note  borrowed.  0: last status 551, false.
//   context  last status (0, 549 removed instead, 551) and blank result are set.
// True when the event was sent or the removal succeeded.
bool IndexContactNote(NOTEHANDLE note, INDEXCONTEXT* context);

// What the user's label of an extra field ("MiscLabel1" to "MiscLabel3") makes of it.
enum ContactFieldType : WORD {
    kContactFieldNone = 0,
    kContactFieldOnlineName = 1,
    kContactFieldEmail = 2,
    kContactFieldNickname = 3,
    kContactFieldHomeUrl = 4,
    kContactFieldUrl = 5,
};

// Composes a postal address, SCS, into buffer[size], terminated.  Returns its length in bytes.
// The items' names are ASCII; an absent part leaves out its separator.
WORD FillAddressBuffer(NOTEHANDLE note, char* buffer, WORD size, const char* street, const char* city,
                       const char* state, const char* zip, const char* country);
// Joins the texts of the chosen items "MiscPhone1" to "MiscPhone3" with ", ", empty ones left out, into
// buffer[size], terminated.  Returns the length in bytes, at most size - 1.
WORD FillExtraBuffer(NOTEHANDLE note, char* buffer, WORD size, bool usePhone1, bool usePhone2, bool usePhone3);
// Reads label 1 to 3 (into Buffer5).  An absent or unknown label gives kContactFieldNone.
WORD GetContactFieldType(NOTEHANDLE note, WORD label);
// Adds the extra fields and the second and third e-mail address.  Returns the last result.
SearchEngineResult IndexExtraItems(NOTEHANDLE note, SearchEngineEvent& event);
