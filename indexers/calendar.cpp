// indexers/calendar.cpp: a calendar entry as a metadata event.
// An entry whose dates are gone or make no sense loses its index entry: it would be found on no day.
#include "indexers/calendar.h"

#include "content/buffers.h"
#include "content/item_text.h"
#include "indexers/classification.h"
#include "indexers/note_kind.h"

namespace {

bool PrepareCalendar(IndexJob& job)
{
    for (const char* item : {"CalendarDateTime", "StartDateTime", "EndDateTime"})
        if (!HasItem(job.note, item))
            return false;
    job.timePairs = FillStartEndTimeArray(job.note, StartEndTimes1, 0, "StartDateTime", "EndDateTime");
    return job.timePairs != 0 && ReadModifiedTime(job);
}

// Whether the URL could be added shows when the event is sent.
SearchEngineResult TryNoteUrl(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    static_cast<void>(AddNoteUrl(step, job, event));
    return kSearchEngineNoError;
}

SearchEngineResult AddEntryTimes(const PropertyStep& /*step*/, IndexJob& job, SearchEngineEvent& event)
{
    return IndexStartEndTimeArray(StartEndTimes1, job.timePairs, false, event);
}

// Required attendees, then optional ones.  Without optional ones the comma after the required stays:
// that is how the text has always been.
SearchEngineResult AddAttendees(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    Buffer4[0] = '\0';
    const WORD required = GetAddressList(job.note, step.items[0], Buffer4, kBufferLimit);
    WORD used = required;
    if (required > 0) {
        Buffer4[used++] = ',';
        Buffer4[used++] = ' ';
        Buffer4[used] = '\0';
    }
    const auto room = static_cast<WORD>(used < kBufferLimit ? kBufferLimit - used : 0);
    const WORD optional = room > 0 ? GetAddressList(job.note, step.items[1], Buffer4 + used, room) : WORD{0};
    if (optional == 0 && required > 0)
        Buffer4[--used] = '\0';
    return IndexItemBuffer(Buffer4, static_cast<WORD>(used + optional), step.key, event, false);
}

constexpr PropertyStep kCalendarSteps[] = {
    {TryNoteUrl, kNoteUrlKey},
    {AddReferenceTime, "last_modified_time"},
    {AddEntryTimes},
    {AddLines, "title", {"Subject"}},
    {AddBody},
    {AddAddresses, "organizer", {"Chair"}},
    {AddAttendees, "attendees", {"RequiredAttendees", "OptionalAttendees"}},
    {AddLines, "location", {"Location"}},
    {AddCategories, "categories", {"Categories"}},
};
constexpr NoteKind kCalendar = {kSearchEventCalendar, PrepareCalendar, kCalendarSteps, true};

}  // namespace

bool IndexCalendarNote(NOTEHANDLE note, INDEXCONTEXT* context)
{
    return IndexNoteAs(kCalendar, note, context);
}
