// indexers/note_kind.cpp: from an open note to its event, for every kind.
#include "indexers/note_kind.h"

#include "addin/dispatch.h"
#include "content/body_text.h"
#include "content/item_text.h"
#include "content/note_times.h"
#include "content/note_url.h"
#include "metastore/search_engine.h"
#include "settings/settings.h"
#include "strings/cstring.h"
#include "strings/string_ids.h"

namespace {

bool RefuseNoNote(INDEXCONTEXT* context)
{
    if (IsDebug())
        LogEvent(kLogNoNote, 0, 0);
    context->lastStatus = kStatusNoSuchNote;
    return false;
}

// The removal leaves its own blank result.
bool RemoveInstead(NOTEHANDLE note, INDEXCONTEXT* context)
{
    const bool removed = DeleteNoteFromIndex(note, context);
    context->lastStatus = kStatusNoteDeleted;
    return removed;
}

SearchEngineResult SendEvent(const NoteKind& kind, SearchEngineEvent& event, INDEXCONTEXT* context)
{
    int written = 0;
    const SearchEngineResult result = event.Send(0, kind.asksWrittenSize ? &written : nullptr);
    context->writtenSize = written;
    if (result != kSearchEngineNoError && IsDebug())
        LogEvent(kLogSendFailed, 0, 0, result);
    return result;
}

// False when a step failed or found nothing to write: the event is then dropped whole and leaves no file.
bool FillAndSend(const NoteKind& kind, IndexJob& job, SearchEngineEvent& event, SearchEngineResult* result)
{
    *result = TakeSteps(kind.steps, job, event);
    if (*result != kSearchEngineNoError || job.abandoned)
        return false;
    *result = SendEvent(kind, event, job.context);
    return *result == kSearchEngineNoError;
}

}  // namespace

bool IndexNoteAs(const NoteKind& kind, NOTEHANDLE note, INDEXCONTEXT* context)
{
    if (note == 0)
        return RefuseNoNote(context);
    IndexJob job{.note = note, .context = context};
    if (!kind.prepare(job))
        return RemoveInstead(note, context);

    SearchEngineResult result = kSearchEngineNoError;
    SearchEngineEvent event = SearchEngine::GetInstance()->CreateEvent(kind.type, result);
    const bool indexed = !event.IsValid() || FillAndSend(kind, job, event, &result);
    context->lastStatus = 0;
    context->blankResult = static_cast<uint32_t>(result);
    return indexed;
}

SearchEngineResult TakeSteps(std::span<const PropertyStep> steps, IndexJob& job, SearchEngineEvent& event)
{
    for (const PropertyStep& step : steps) {
        if (const SearchEngineResult result = step.add(step, job, event); result != kSearchEngineNoError)
            return result;
        if (job.abandoned)
            break;
    }
    return kSearchEngineNoError;
}

bool ReadModifiedTime(IndexJob& job)
{
    return GetModifiedTime(job.note, job.time);
}

SearchEngineResult AddReferenceTime(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    return LogIfFailed(step.key, event.AddProperty(CString(step.key), job.time));
}

SearchEngineResult AddBody(const PropertyStep& /*step*/, IndexJob& job, SearchEngineEvent& event)
{
    return IndexItemContents(job.note, nullptr, true, event);
}

SearchEngineResult AddNoteUrl(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    return IndexNoteURL(job.note, event, step.key);
}

SearchEngineResult AddLines(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    return IndexItem(job.note, kIndexLines, step.items[0], step.key, event, false);
}

SearchEngineResult AddText(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    return IndexItem(job.note, kIndexText, FirstItemWithText(step, job.note), step.key, event, false);
}

SearchEngineResult AddCategories(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    return IndexItem(job.note, kIndexCategories, step.items[0], step.key, event, false);
}

SearchEngineResult AddAddresses(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    return IndexItem(job.note, kIndexAddresses, step.items[0], step.key, event, false);
}

SearchEngineResult AddAddressesOrEmpty(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    return IndexItem(job.note, kIndexAddresses, step.items[0], step.key, event, true);
}

SearchEngineResult AddTimeItem(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    double seconds = 0;
    if (!ReadTimeItem(job.note, step.items[0], &seconds))
        return kSearchEngineNoError;
    return LogIfFailed(step.key, event.AddProperty(CString(step.key), seconds));
}

bool ReadTimeItem(NOTEHANDLE note, const char* item, double* seconds)
{
    TIMEDATE time;
    return VLTItemGetTime(note, item, &time) && TIMEDATEtoUTC(&time, *seconds);
}

SearchEngineResult LogIfFailed(const char* key, SearchEngineResult result)
{
    if (result != kSearchEngineNoError && IsDebug())
        LogEvent(kLogPropertyFailed, 0, 0, key, result);
    return result;
}

const char* FirstItemWithText(const PropertyStep& step, NOTEHANDLE note)
{
    return step.items[1] == nullptr || ItemHasText(note, step.items[0]) ? step.items[0] : step.items[1];
}
