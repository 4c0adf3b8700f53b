// addin/enumerate.cpp: one entry of the table of modified notes: index it, remove it, count it, pause.
#include <atomic>

#include "addin/dispatch.h"
#include "addin/index_context.h"
#include "addin/lifecycle.h"
#include "addin/loop.h"
#include "addin/pass.h"
#include "content/note_url.h"
#include "platform/owner.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "strings/string_ids.h"

namespace {

using NoteOwner = Owner<NOTEHANDLE, VLTNoteClose>;

constexpr NOTEID kDeletionMark = 0x80000000;
constexpr uint32_t kPauseMs = 100;  // short waits are gathered into pauses of about this length
constexpr uint32_t kLongestGatheredMs = 50;
constexpr size_t kUrlBytes = 1024;

// One result, counted in the pass and, in a pass that is not the history's, in the run statistics.
void Count(INDEXCONTEXT* context, uint32_t INDEXCONTEXT::*counter, std::atomic<uint32_t> PLUGINCONTEXT::*shared)
{
    context->*counter += 1;
    if (!context->history)
        GlobalContext.*shared += 1;
}

bool StopPending()
{
    return bStopAndReset != 0 || ShouldStop();
}

// Whether the pass must end before this note.  A reset needs no resume point: all progress is forgotten.
bool PassMustEnd(INDEXCONTEXT* context)
{
    if (bStopAndReset != 0 || !GetDbPath(static_cast<int>(GlobalContext.database), nullptr, 0))
        return true;
    if (!IsEnabled() || ShouldStop() || (context->history && !IsIndexingHistory())) {
        context->stopped = true;
        return true;
    }
    return false;
}

STATUS CountFailedRemoval(INDEXCONTEXT* context)
{
    Count(context, &INDEXCONTEXT::blankFailures, &PLUGINCONTEXT::blankFailures);
    context->stopped = true;
    return kStatusRemovalFailed;
}

STATUS RemoveDeletedNote(NOTEID id, INDEXCONTEXT* context)
{
    if (!IsDeletingNotes())
        return 0;
    if (DeleteNoteIDFromIndex(context->database, id, context)) {
        Count(context, &INDEXCONTEXT::deleted, &PLUGINCONTEXT::deleted);
        return 0;
    }
    return context->blankResult == 0 ? STATUS{0} : CountFailedRemoval(context);
}

void LogNoteUrl(NOTEHANDLE note)
{
    char url[kUrlBytes] = "";
    GetNoteURL(note, url);
    LogEvent(kLogNoteUrl, 0, 0, url);
}

// The wait time is a mean per note; waits of up to 50 ms come together, about 100 ms every few notes.
void PauseAfterIndexing()
{
    if (StopPending())
        return;
    const uint32_t wait = GetIndexingWaitTime();
    if (wait > kLongestGatheredMs) {
        SleepForMilli(wait, true);
        return;
    }
    const uint32_t notes = wait == 0 ? 0 : kPauseMs / wait;
    if (notes != 0 && GlobalContext.processed % notes == 0)
        SleepForMilli(wait * notes, true);
    else
        EnsureIdle();
}

STATUS CountUnindexed(INDEXCONTEXT* context)
{
    if (context->lastStatus == 0 && context->blankResult != 0)
        return CountFailedRemoval(context);
    if (context->lastStatus == 0)
        Count(context, &INDEXCONTEXT::skipped, &PLUGINCONTEXT::skipped);
    else if (context->lastStatus == kStatusNoteDeleted)
        Count(context, &INDEXCONTEXT::deleted, &PLUGINCONTEXT::deleted);
    else
        Count(context, &INDEXCONTEXT::errors, &PLUGINCONTEXT::errors);
    return 0;
}

STATUS IndexOpenNote(NOTEID id, INDEXCONTEXT* context)
{
    NoteOwner note;
    if (const STATUS status = VLTNoteOpen(context->database, id, 0, note.Out()); status != 0) {
        Count(context, &INDEXCONTEXT::errors, &PLUGINCONTEXT::errors);
        if (IsDebug())
            LogEvent(kLogNoteNotOpened, 0, status, id);
        return 0;
    }
    if (IsDebugLots())
        LogNoteUrl(note.Get());
    if (!IndexNote(note.Get(), context))
        return CountUnindexed(context);
    Count(context, &INDEXCONTEXT::indexed, &PLUGINCONTEXT::indexed);
    PauseAfterIndexing();
    return 0;
}

}  // namespace

STATUS EnumMailTable(void* passed, NOTEID id)
{
    INDEXCONTEXT* const context = static_cast<INDEXCONTEXT*>(passed);
    context->currentNote = id;
    const bool beforeResume = context->resumeNote != 0 && id < context->resumeNote;
    if (!context->history)
        GlobalContext.processed += 1;
    GlobalContext.historyActive = context->history ? 1 : 0;
    if (PassMustEnd(context))
        return kStatusStopped;
    if (beforeResume)
        return 0;
    if (!context->history && GlobalContext.processed % 10 == 5)
        IndexHistory();
    EnsureIdle();
    if ((id & kDeletionMark) != 0)
        return RemoveDeletedNote(id & ~kDeletionMark, context);
    return IndexOpenNote(id, context);
}
