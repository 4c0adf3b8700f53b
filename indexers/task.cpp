// indexers/task.cpp: a task as a metadata event.
// The completion status that searches show is made from the task's type and due state.
#include "indexers/task.h"

#include "indexers/calendar.h"
#include "indexers/classification.h"
#include "indexers/note_kind.h"
#include "strings/cstring.h"

namespace {

constexpr long kDefaultTaskType = 1;
constexpr long kGroupTaskType = 2;
constexpr long kNoSuchState = 20;  // what an absent "DueState" or "Importance" reads as

constexpr unsigned kStatusNotSent = 0;
constexpr unsigned kStatusOtherwise = 1;
constexpr unsigned kStatusByDueState[] = {3, 1, 0, 1, 1, 1, 1, 1, 4, 2};

struct ImportanceRow {
    long item;
    unsigned property;
};
constexpr ImportanceRow kImportance[] = {{1, 2}, {2, 1}, {3, 0}};

// The day entries must be there although the range is made of other items, which may be absent.
bool PrepareTask(IndexJob& job)
{
    if (!HasItem(job.note, "CalendarDateTime") || !ReadModifiedTime(job))
        return false;
    if (HasItem(job.note, "StartDateTime") && HasItem(job.note, "DueDateTime"))
        job.timePairs = FillStartEndTimeArray(job.note, StartEndTimes2, kMaxTimePairs, "StartDateTime", "DueDateTime");
    return true;
}

SearchEngineResult AddTaskTimes(const PropertyStep& /*step*/, IndexJob& job, SearchEngineEvent& event)
{
    return IndexStartEndTimeArray(StartEndTimes2, job.timePairs, true, event);
}

unsigned TaskStatus(NOTEHANDLE note)
{
    if (VLTItemGetLong(note, "TaskType", kDefaultTaskType) == kGroupTaskType && !HasItem(note, "PostedDate"))
        return kStatusNotSent;
    // Unsigned, so that negative states are out of the table too.
    const auto state = static_cast<unsigned long>(VLTItemGetLong(note, "DueState", kNoSuchState));
    return state < std::size(kStatusByDueState) ? kStatusByDueState[state] : kStatusOtherwise;
}

SearchEngineResult AddTaskStatus(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    return LogIfFailed(step.key, event.AddProperty(CString(step.key), TaskStatus(job.note)));
}

// A task is worth finding without this date, and without the importance: neither result counts.
SearchEngineResult TryCompletionDate(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    double seconds = 0;
    if (ReadTimeItem(job.note, step.items[0], &seconds))
        static_cast<void>(event.AddProperty(CString(step.key), seconds));
    return kSearchEngineNoError;
}

SearchEngineResult TryImportance(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    const long importance = VLTItemGetLong(job.note, step.items[0], kNoSuchState);
    for (const ImportanceRow& row : kImportance)
        if (row.item == importance)
            static_cast<void>(event.AddProperty(CString(step.key), row.property));
    return kSearchEngineNoError;
}

constexpr PropertyStep kTaskSteps[] = {
    {AddReferenceTime, "last_modified_time"},
    {AddBody},
    {AddNoteUrl, kNoteUrlKey},
    {AddTaskTimes},
    {AddLines, "title", {"Subject"}},
    {AddCategories, "categories", {"Categories"}},
    {AddAddresses, "owner", {"Chair"}},
    {AddTaskStatus, "status"},
    {TryCompletionDate, "date_completed", {"CompletedDateTime"}},
    {TryImportance, "importance", {"Importance"}},
};
constexpr NoteKind kTask = {kSearchEventTask, PrepareTask, kTaskSteps, true};

}  // namespace

bool IndexTaskNote(NOTEHANDLE note, INDEXCONTEXT* context)
{
    return IndexNoteAs(kTask, note, context);
}
