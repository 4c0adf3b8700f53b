// client/check/note_fate.h: what becomes of a note at its indexing.
// The client's own knowledge of what the add-in does with a note, for telling users why; tests hold it against
// the add-in.
#pragma once

#include "client/search/kinds.h"
#include "platform/store.h"

namespace pavex {

// The variables of the ini file that decide.
struct IndexSwitches {
    bool encrypted = false;
    bool drafts = false;
    bool chats = true;
    bool discussion = false;
    bool history = true;
    bool otherNotes = true;  // of no known kind
    bool deletions = true;   // deleted notes lose their metafiles
};
IndexSwitches ReadIndexSwitches();

enum class Fate {
    kIndexed,
    kDraft,
    kChat,
    kNoEntryDates,
    kNoTaskDay,
    kNoTime,
    kOtherNote,
    kHistoryOff,
    kNoHistoryEntry,
    kLeadsNowhere,
};

struct NoteFate {
    Fate fate = Fate::kIndexed;
    const SearchKind* kind = nullptr;  // what it is, also when that is left out; null when it is of no kind
};

struct FateText {
    Fate fate;
    const char* name;    // in JSON
    const char* reason;  // a clause whose subject is the note
    const char* remedy;  // a sentence; empty: there is none
};
const FateText& TextOfFate(Fate fate);

// note: borrowed, open; its sealed items are made readable when the switches say so.  isHistory: its database is
// the history's.
NoteFate FateOfNote(NOTEHANDLE note, bool isHistory, const IndexSwitches& switches);

}  // namespace pavex
