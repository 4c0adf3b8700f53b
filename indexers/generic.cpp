// indexers/generic.cpp: a note of no known kind as a metadata event.
// What matters in such a note is not known: all of its items are text to search.
#include "indexers/generic.h"

#include "content/body_text.h"
#include "content/buffers.h"
#include "content/item_text.h"
#include "content/note_title.h"
#include "indexers/note_kind.h"
#include "settings/settings.h"

namespace {

// As the client displays it, where the formulas of its form may be computed; else the body and then item by
// item.  The first text under a key stays: where both are taken it is the body's, an empty one too.
SearchEngineResult AddWholeNote(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    const bool render = ComputeOK();
    bool done = false;
    if (!render)
        if (const SearchEngineResult result = AddBody(step, job, event); result != kSearchEngineNoError)
            return result;
    return IndexNoteContents(job.note, 0, render ? 1 : 0, render, &done, event);
}

// A note without a title of its own goes by its database's.
SearchEngineResult AddWindowTitle(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    Buffer7[0] = '\0';
    const WORD length = GetNoteTitle(job.note, Buffer7, kBufferLimit);
    if (length > 0)
        return IndexItemBuffer(Buffer7, length, step.key, event, false);
    return IndexDbTitle(job.context->database, event, step.key, false);
}

constexpr PropertyStep kGenericSteps[] = {
    {AddReferenceTime, "last_modified_time"},
    {AddWholeNote},
    {AddNoteUrl, kNoteUrlKey},
    {AddWindowTitle, "title"},
};
constexpr NoteKind kGeneric = {kSearchEventNote, ReadModifiedTime, kGenericSteps, true};

}  // namespace

bool IndexGenericNote(NOTEHANDLE note, INDEXCONTEXT* context)
{
    return IndexNoteAs(kGeneric, note, context);
}
