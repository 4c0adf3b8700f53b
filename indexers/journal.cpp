// indexers/journal.cpp: a journal entry as a metadata event.
#include "indexers/journal.h"

#include "indexers/note_kind.h"

namespace {

constexpr PropertyStep kJournalSteps[] = {
    {AddReferenceTime, "last_modified_time"},
    {AddBody},
    {AddNoteUrl, kNoteUrlKey},
    {AddLines, "title", {"Subject"}},
    {AddCategories, "categories", {"Categories"}},
    {AddTimeItem, "start_time", {"TimeCreated"}},
};
constexpr NoteKind kJournal = {kSearchEventJournal, ReadModifiedTime, kJournalSteps, true};

}  // namespace

bool IndexJournalNote(NOTEHANDLE note, INDEXCONTEXT* context)
{
    return IndexNoteAs(kJournal, note, context);
}
