// addin/dispatch.cpp: the order in which the kinds are asked, and the removal of notes from the index.
#include "addin/dispatch.h"

#include <cstring>

#include "content/note_url.h"
#include "indexers/calendar.h"
#include "indexers/classification.h"
#include "indexers/contact.h"
#include "indexers/discussion.h"
#include "indexers/generic.h"
#include "indexers/history.h"
#include "indexers/journal.h"
#include "indexers/mail.h"
#include "indexers/task.h"
#include "metastore/search_engine.h"
#include "settings/settings.h"
#include "strings/cstring.h"
#include "strings/string_ids.h"

namespace {

constexpr size_t kUrlBytes = 1024;

// The note kinds in the order of asking.  The first that claims a note decides: when its bit of the mask
// is clear the note is not indexed, and no later kind is asked.
struct Kind {
    bool (*isAsked)();  // null: always
    bool (*claims)(NOTEHANDLE note);
    unsigned maskBit;
    bool (*index)(NOTEHANDLE note, INDEXCONTEXT* context);
};
constexpr Kind kKinds[] = {
    {nullptr, IsCalendarNote, kNoteKindCalendar, IndexCalendarNote},
    {nullptr, IsTaskNote, kNoteKindTask, IndexTaskNote},
    {IsIndexingDiscussion, IsDiscussionNote, kNoteKindDiscussion, IndexDiscussionNote},
    {nullptr, IsMailNote, kNoteKindMail, IndexMailNote},
    {nullptr, IsContactNote, kNoteKindContact, IndexContactNote},
    {nullptr, IsJournalNote, kNoteKindJournal, IndexJournalNote},
};

void DecryptIfSealed(NOTEHANDLE note)
{
    bool isSigned = false;
    bool isSealed = false;
    // A note that cannot be decrypted is indexed by what can be read of it.
    if (IsIndexingEncrypted() && VLTNoteIsSignedOrSealed(note, &isSigned, &isSealed))
        static_cast<void>(VLTNoteDecrypt(note, 0, nullptr));
}

bool RemoveEntry(DBHANDLE db, NOTEID id, INDEXCONTEXT* context)
{
    if (!DoesGoogleSupport(kNoteKindRemoval))
        return false;
    ORIGINATORID oid = {};
    TIMEDATE modified = {};
    WORD noteClass = 0;
    const STATUS status = VLTDbGetNoteInfo(db, id, &oid, &modified, &noteClass);
    if (status != 0 && status != kStatusNoteDeleted)
        return false;
    char url[kUrlBytes] = "";
    GetNoteOIDURL(db, oid, url);
    if (SearchEngine::GetInstance()->DeleteNoteEntry(CString(url)) != kSearchEngineNoError)
        return false;
    context->blankResult = 0;
    context->lastStatus = 0;
    return true;
}

// The items of a blank mail record, empty all of them.
constexpr const char* kBlankKeys[] = {
    "com.quorvex.pavex.content", "from", "to", "subject", "cc", "bcc", "replyto",
};

SearchEngineResult SendBlankMail(SearchEngineEvent& event)
{
    const SearchEngineResult received = event.AddProperty(CString("received"), 0.0);
    if (received != kSearchEngineNoError) {
        if (IsDebug())
            LogEvent(kLogPropertyFailed, 0, 0, "received", received);
        return received;
    }
    for (const char* key : kBlankKeys)
        if (IndexBlankItem(event, key) != kSearchEngineNoError)
            break;  // the record is sent all the same
    int written = 0;
    const SearchEngineResult sent = event.Send(0, &written);
    if (sent != kSearchEngineNoError && IsDebug())
        LogEvent(kLogSendFailed, 0, 0, sent);
    return sent;
}

}  // namespace

bool IndexNote(NOTEHANDLE note, INDEXCONTEXT* context)
{
    DecryptIfSealed(note);
    if (context->history)
        return IsHistoryNote(note) && DoesGoogleSupport(kNoteKindGeneric) && IndexHistoryNote(note, context);
    for (const Kind& kind : kKinds) {
        if (kind.isAsked != nullptr && !kind.isAsked())
            continue;
        if (kind.claims(note))
            return DoesGoogleSupport(kind.maskBit) && kind.index(note, context);
    }
    return IsIndexingAllNotes() && DoesGoogleSupport(kNoteKindGeneric) && IndexGenericNote(note, context);
}

bool DeleteNoteFromIndex(NOTEHANDLE note, INDEXCONTEXT* context)
{
    if (note == 0)
        return false;
    DBHANDLE db = 0;
    NOTEID id = 0;
    VLTNoteGetInfo(note, kNoteInfoDatabase, &db);
    VLTNoteGetInfo(note, kNoteInfoId, &id);
    return db != 0 && DeleteNoteIDFromIndex(db, id, context);
}

bool DeleteNoteIDFromIndex(DBHANDLE db, NOTEID id, INDEXCONTEXT* context)
{
    return RemoveEntry(db, id, context) || IndexBlankMail(db, id, context);
}

bool IndexBlankMail(DBHANDLE db, NOTEID id, INDEXCONTEXT* context)
{
    ORIGINATORID oid = {};
    TIMEDATE modified = {};
    WORD noteClass = 0;
    const STATUS status = VLTDbGetNoteInfo(db, id, &oid, &modified, &noteClass);
    if (status != 0 && status != kStatusNoteDeleted) {
        context->blankResult = 0;
        context->lastStatus = 0;
        return false;
    }
    SearchEngineResult result = kSearchEngineNoError;
    SearchEngineEvent event = SearchEngine::GetInstance()->CreateEvent(kSearchEventMessage, result);
    result = event.IsValid() ? SendBlankMail(event) : kSearchEngineNoError;
    context->lastStatus = 0;
    context->blankResult = static_cast<uint32_t>(result);
    return result == kSearchEngineNoError;
}

SearchEngineResult IndexBlankItem(SearchEngineEvent& event, const char* key)
{
    const SearchEngineResult result = event.AddProperty(CString(key), CString());
    if (result != kSearchEngineNoError && IsDebug())
        LogEvent(kLogPropertyFailed, 0, 0, key, result);
    return result;
}
