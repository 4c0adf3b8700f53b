// addin/pass.cpp: one pass over one slot: open, list what changed, enumerate, record how far it got.
#include "addin/pass.h"

#include <string>

#include "addin/index_context.h"
#include "addin/lifecycle.h"
#include "addin/loop.h"
#include "platform/owner.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "strings/string_ids.h"

namespace {

constexpr WORD kPathBytes = 256;
constexpr WORD kClassDocuments = 1;

using DatabaseOwner = Owner<DBHANDLE, VLTDbClose>;
using TableOwner = Owner<IDTABLE, IDDestroyTable>;

// An unreachable database is reported once, until ResetLog; with debugging on, every time.
void LogOncePerSlot(std::atomic<uint8_t>& logged, DWORD id, STATUS status, const char* path)
{
    if (logged == 0 || IsDebug())
        LogEvent(id, 0, status, path);
    logged = 1;
}

bool IsEarlier(const TIMEDATE& a, const TIMEDATE& b)
{
    return TimeDateCollate(&a, &b) < 0;
}

// The unread table is a convenience for the indexers: no user or no table is no failure.
TableOwner OpenUnreadTable(DBHANDLE db)
{
    TableOwner table;
    char name[kPathBytes] = "";
    if (SECKFMUserInfo(1, name, nullptr) != 0)
        return table;
    if (VLTDbGetUnreadNoteTable(db, name, static_cast<WORD>(std::char_traits<char>::length(name)), 0, table.Out()) != 0)
        return TableOwner();
    return table;
}

void RecordNothingModified(int slot, TIMEDATE* until, const char* path, bool history)
{
    RecordPass(slot, path, until, nullptr, 0, 0, 0);
    if (IsDebug())
        LogEvent(kLogNothingModified, 0, 0, path);
    if (!history) {
        GlobalContext.inProgress = 0;
        GlobalContext.upToDate = 1;
    }
}

void LogPassEnd(const INDEXCONTEXT& context, STATUS status, const char* path)
{
    if (IsDebug())
        LogEvent(kLogPassCounters, 0, status, path, context.indexed, context.skipped, context.errors,
                 context.blankFailures, context.deleted);
    else if (context.blankFailures != 0)
        LogEvent(kLogBlankFailed, 0, status, path, context.indexed, context.blankResult);
    else if (!context.history && context.indexed != 0)
        LogEvent(kLogPassIndexed, 0, status == kStatusStopped ? STATUS{0} : status, path, context.indexed);
}

// A complete pass moves since forward and drops the recovery record; an interrupted one keeps since and
// stores one; a failed enumeration keeps since, so that the next pass repeats the work.
void RecordOutcome(int slot, TIMEDATE* since, TIMEDATE* until, const INDEXCONTEXT& context, STATUS status,
                   const char* path)
{
    if (context.stopped) {
        const bool counted = !context.history;
        RecordPass(slot, path, since, until, context.currentNote, counted ? GlobalContext.processed.load() : 0,
                   counted ? GlobalContext.total.load() : 0);
    } else {
        RecordPass(slot, path, status == 0 ? until : since, nullptr, 0, 0, 0);
    }
    if (context.stopped && IsDebug())
        LogEvent(kLogPassStopped, 0, context.lastStatus, path);
    if (!context.history) {
        GlobalContext.resumed = context.stopped ? 1 : 0;
        if (!context.stopped)
            GlobalContext.upToDate = status == 0 ? 1 : 0;
    }
}

STATUS EnumerateTable(IDTABLE table, INDEXCONTEXT* context, const char* path)
{
    const bool history = context->history;
    if (!history) {
        GlobalContext.inProgress = 1;
        GlobalContext.upToDate = 0;
        GlobalContext.total = IDEntries(table);
        GlobalContext.resumed = context->resumeNote != 0 ? 1 : 0;
    }
    TableOwner unread = history ? TableOwner() : OpenUnreadTable(context->database);
    context->unreadTable = unread.Get();
    const STATUS status = IDEnumerate(table, EnumMailTable, context);
    context->unreadTable = 0;
    LogPassEnd(*context, status, path);
    if (!history)
        GlobalContext.inProgress = 0;
    GlobalContext.historyActive = 0;
    dwIdleDelay = 0;
    return status;
}

STATUS PassSinceUntil(int slot, const char* path, DBHANDLE db, TIMEDATE* since, TIMEDATE* until, NOTEID resumeNote,
                      bool history)
{
    EnsureIdle();
    TIMEDATE minimum;
    TimeConstant(0, &minimum);

    const TIMEDATE interruptedAt = *until;
    TableOwner table;
    const STATUS listed =
        VLTDbGetModifiedNoteTable(db, kClassDocuments, since != nullptr ? *since : minimum, until, table.Out());
    // A resumed pass does not open the notes below its resume point.  What changed there since the
    // interruption lies after the interrupted pass's end time, which therefore stays the end of this one.
    if (resumeNote != 0 && IsEarlier(interruptedAt, *until))
        *until = interruptedAt;
    if (IsDebug())
        LogEvent(kLogListed, 0, listed, path, since != nullptr ? since : &minimum, until, resumeNote);
    if (!history) {
        GlobalContext.database = static_cast<uint32_t>(slot);
        GlobalContext.total = 0;
        GlobalContext.processed = 0;
        GlobalContext.resumed = 0;
    }
    GlobalContext.historyActive = 0;
    if (listed == kStatusNothingModified) {
        RecordNothingModified(slot, until, path, history);
        return 0;
    }
    if (listed != 0) {
        LogEvent(kLogNotListed, 0, listed, path);
        return listed;
    }

    MarkPassBegun(slot);
    INDEXCONTEXT context = {};
    context.database = db;
    context.resumeNote = resumeNote;
    context.fullPass = since == nullptr || IsTimeDateClear(since);
    context.history = history;
    const STATUS status = EnumerateTable(table.Get(), &context, path);
    RecordOutcome(slot, since != nullptr ? since : &minimum, until, context, status, path);
    return status;
}

void PassFromStoredTime(int slot, DBHANDLE db, bool history, std::atomic<uint8_t>& logged, const char* path)
{
    TIMEDATE since;
    TimeConstant(0, &since);
    GetDbTimestamp(slot, &since);  // without a stored time it stays the minimum: everything is new
    TIMEDATE until;
    unsigned resumeNote = 0;
    if (GetDbRecovery(slot, &until, &resumeNote)) {
        PassSinceUntil(slot, path, db, &since, &until, resumeNote, history);
        return;
    }
    if (const STATUS status = VLTDbModifiedTime(db, &until, nullptr); status != 0) {
        LogOncePerSlot(logged, kLogNoModifiedTime, status, path);
        return;
    }
    if (until.Innards[0] == 0 || until.Innards[1] == 0)
        OSCurrentTIMEDATE(&until);
    PassSinceUntil(slot, path, db, &since, &until, 0, history);
}

}  // namespace

void IndexFile(int slot, bool history)
{
    char path[kPathBytes + 1] = "";
    if (!GetDbPath(slot, path, kPathBytes))
        return;
    EnsureIdle();
    std::atomic<uint8_t>& logged = history ? bLoggedHistory : bLogged[slot];
    DatabaseOwner db;
    const STATUS status = VerifyDatabase(0, path, db.Out());
    if (status != 0)
        LogOncePerSlot(logged, kLogCannotOpen, status, path);
    else if (IsDebug())
        LogEvent(kLogOpened, 0, 0, path);
    if (db.Get() != 0)
        PassFromStoredTime(slot, db.Get(), history, logged, path);
}

STATUS IndexMailDBSinceUntil(int slot, DBHANDLE db, TIMEDATE* since, TIMEDATE* until, NOTEID resumeNote, bool history)
{
    char path[kPathBytes + 1] = "";
    GetDbPath(slot, path, kPathBytes);
    return PassSinceUntil(slot, path, db, since, until, resumeNote, history);
}
