// indexers/note_kind.h: the road that a note of every kind takes to its event, written once.
// A kind is a row of facts and a table of steps; the steps that more than one kind takes are here too.
// Indexing thread only.
#pragma once

#include <span>

#include "addin/index_context.h"
#include "metastore/search_engine_event.h"
#include "platform/store.h"

// What the steps of one note share.
struct IndexJob {
    NOTEHANDLE note = 0;  // borrowed, open
    INDEXCONTEXT* context = nullptr;
    double time = 0;         // the note's reference time, CoreFoundation absolute, seconds
    WORD timePairs = 0;      // occurrences of a calendar entry or task
    bool abandoned = false;  // a step found that there is nothing to write: no failure, no file
    // Of a contact: the first phone and fax item that has text.
    const char* primaryPhone = nullptr;
    const char* primaryFax = nullptr;
};

// One row of a kind's table: which items become which property, and how.
struct PropertyStep {
    // Returns 0 or why the property could not be added.
    SearchEngineResult (*add)(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event);
    const char* key = nullptr;
    const char* items[5] = {};  // ASCII; what they are to each other is the step's affair
};

struct NoteKind {
    SearchEngineEventType type;
    // Reads the reference time and whatever else the note cannot be indexed without.  False: the note's
    // entry is removed instead.
    bool (*prepare)(IndexJob& job);
    std::span<const PropertyStep> steps;
    bool asksWrittenSize;  // false: the context's written size is set to 0
};

// Indexes a note as the kind says.
//   note  borrowed.  0: last status 551, false.
//   context  last status (0, 549 removed instead, 551), blank result and written size are set.
// True when the event was sent, when the kind has no valid event, or when the removal succeeded.
bool IndexNoteAs(const NoteKind& kind, NOTEHANDLE note, INDEXCONTEXT* context);

// Takes the steps in order and stops at the first result that is not 0, or when the job is abandoned.
// Returns the last result.
SearchEngineResult TakeSteps(std::span<const PropertyStep> steps, IndexJob& job, SearchEngineEvent& event);

// ---- Preparations ---------------------------------------------------------------------------

bool ReadModifiedTime(IndexJob& job);

// ---- Steps ----------------------------------------------------------------------------------

// The job's reference time.
SearchEngineResult AddReferenceTime(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event);
// The note's body as "com.quorvex.pavex.content"; takes no key and no item.
SearchEngineResult AddBody(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event);
SearchEngineResult AddNoteUrl(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event);
// Text with line breaks kept.  items[0].
SearchEngineResult AddLines(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event);
// Text, values joined with ", ".  items[0] if it has text, else items[1] where there is one.
SearchEngineResult AddText(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event);
SearchEngineResult AddCategories(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event);
SearchEngineResult AddAddresses(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event);
// As AddAddresses; an absent or empty item adds the key with an empty text.
SearchEngineResult AddAddressesOrEmpty(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event);
// A time item, where it is there and is a time.
SearchEngineResult AddTimeItem(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event);

// ---- For steps of one kind ------------------------------------------------------------------

// The first time of an item as a CoreFoundation absolute time, seconds.  False, with *seconds of no
// meaning, when it is absent or no time.
bool ReadTimeItem(NOTEHANDLE note, const char* item, double* seconds);
// Puts the reason why a property is missing into the log when debugging; a result of 0 is no reason.
// Returns the result.
SearchEngineResult LogIfFailed(const char* key, SearchEngineResult result);
// items[0] if it has text, or there is no second; else items[1].
const char* FirstItemWithText(const PropertyStep& step, NOTEHANDLE note);
