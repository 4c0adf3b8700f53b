// indexers/history.cpp: a bookmark of the browsing history as a metadata event.
// The link that a bookmark's rich text holds becomes the URL of the note it leads to.
#include "indexers/history.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "content/note_url.h"
#include "indexers/note_kind.h"
#include "strings/cstring.h"

namespace {

constexpr WORD kLinkSignature = 65526;  // -10 as a signed word
constexpr int16_t kDecodedSignatures[] = {-10, -166, -143, -136};
constexpr WORD kLinkToNote = 2;
constexpr DWORD kLinkFollows = 2;  // in the low byte of the flags

// The item's rich text; false when it is absent or of another type.
bool FindRichText(NOTEHANDLE note, const char* item, BLOCKID* value, DWORD* valueBytes)
{
    WORD type = 0;
    return VLTItemInfo(note, item, static_cast<WORD>(strlen(item)), nullptr, &type, value, valueBytes) == kStatusOk &&
           type == kTypeRichText;
}

bool IsNoteLink(const LINKRECORD& record)
{
    const auto signature = static_cast<int16_t>(record.signature);
    return std::ranges::find(kDecodedSignatures, signature) != std::end(kDecodedSignatures) &&
           record.linkType == kLinkToNote && (record.flags & kLinkFollows) != 0;
}

// Links to a view or a database leave the note's id zero.
bool NamesNote(const NOTELINK& link)
{
    return link.replica.Innards[0] != 0 && link.replica.Innards[1] != 0 && link.note.File.Innards[0] != 0 &&
           link.note.File.Innards[1] != 0 && link.note.Note.Innards[0] != 0;
}

// Abandons the job when the bookmark leads to no note.
SearchEngineResult AddLinkTarget(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    char url[kLinkTextBytes] = "";
    BLOCKID value;
    DWORD valueBytes = 0;
    // The walk's status says nothing new: 413 for the link, 518 for a damaged end, both with what was read.
    if (FindRichText(job.note, step.items[0], &value, &valueBytes))
        static_cast<void>(EnumCompositeBuffer(value, valueBytes, iSiteMapCDEnumProc, url));
    size_t length = strlen(url);
    if (length == 0) {
        job.abandoned = true;
        return kSearchEngineNoError;
    }
    if (const SearchEngineResult result = IndexNoteURL(job.note, event, kNoteUrlKey); result != kSearchEngineNoError)
        return result;
    if (url[length - 1] == ' ')
        url[--length] = '\0';
    return LogIfFailed(step.key, event.AddProperty(CString(step.key), CString(url)));
}

constexpr PropertyStep kHistorySteps[] = {
    {AddReferenceTime, "last_modified_time"},
    {AddLinkTarget, "com_quorvex_morvane_pavex_history_content_url", {"URL"}},
    {AddText, "title", {"Title"}},
};
constexpr NoteKind kHistory = {kSearchEventHistory, ReadModifiedTime, kHistorySteps, true};

}  // namespace

bool IndexHistoryNote(NOTEHANDLE note, INDEXCONTEXT* context)
{
    return IndexNoteAs(kHistory, note, context);
}

STATUS iSiteMapCDEnumProc(const char* record, WORD signature, DWORD recordBytes, void* context)
{
    if (signature != kLinkSignature)
        return kStatusOk;
    RLReadODSMemory(record, recordBytes, static_cast<char*>(context));
    return kStatusCancelled;  // any status ends the walk
}

void RLReadODSMemory(const char* record, DWORD recordBytes, char* url)
{
    url[0] = '\0';
    const char* next = record;
    const char* const end = record + recordBytes;
    LINKRECORD fixed = {};
    if (ODSReadMemory(&next, end, kOdsLinkRecord, &fixed, 1) != kStatusOk || !IsNoteLink(fixed))
        return;
    const size_t variableBytes = (size_t{fixed.firstCount} + fixed.secondCount) * ODSLength(kOdsWord);
    if (variableBytes > static_cast<size_t>(end - next))
        return;
    next += variableBytes;
    NOTELINK link = {};
    if (ODSReadMemory(&next, end, kOdsNoteLink, &link, 1) != kStatusOk || !NamesNote(link))
        return;
    AddInFormatErrorText(url, "Pavex:///%H//%H%H ", &link.replica, &link.note.File, &link.note.Note);
}
