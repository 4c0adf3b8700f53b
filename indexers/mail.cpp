// indexers/mail.cpp: a mail message as a metadata event.
// Drafts and saved chats are the user's choice; one that is not wanted loses the entry it may have.
#include "indexers/mail.h"

#include "content/buffers.h"
#include "content/item_text.h"
#include "content/note_times.h"
#include "indexers/classification.h"
#include "indexers/note_kind.h"
#include "settings/settings.h"

namespace {

constexpr WORD kSubjectNumber = 3;
constexpr WORD kPostedDateNumber = 5;

// A message that was never sent has no posted date.
bool ReadReceivedTime(IndexJob& job)
{
    if (!HasItem(job.note, "PostedDate")) {
        const bool wanted = HasItem(job.note, "$IMTranscript") ? IsIndexingChats() : IsIndexingDrafts();
        return wanted && GetModifiedTime(job.note, job.time);
    }
    TIMEDATE posted;
    if (MailGetMessageItemTimeDate(job.note, kPostedDateNumber, &posted) == kStatusOk &&
        TIMEDATEtoUTC(&posted, job.time))
        return true;
    return GetModifiedTime(job.note, job.time);
}

SearchEngineResult IndexMailText(NOTEHANDLE note, WORD number, SearchEngineEvent& event, const char* key)
{
    Buffer3[0] = '\0';
    WORD length = 0;
    if (MailGetMessageItem(note, number, Buffer3, kBufferLimit, &length) != kStatusOk)
        length = 0;  // an absent field is no failure
    return IndexItemBuffer(Buffer3, length, key, event, false);
}

// Who sent it on behalf of another is the one it comes from.
const char* SenderItem(NOTEHANDLE note)
{
    return HasItem(note, "Principal") ? "Principal" : "From";
}

SearchEngineResult AddSender(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    return IndexItem(job.note, kIndexAddresses, SenderItem(job.note), step.key, event, false);
}

SearchEngineResult AddSubject(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    return IndexMailText(job.note, kSubjectNumber, event, step.key);
}

constexpr PropertyStep kMailSteps[] = {
    {AddReferenceTime, "received"},
    {AddBody},
    {AddNoteUrl, kNoteUrlKey},
    {AddSender, "from"},
    {AddAddresses, "to", {"SendTo"}},
    {AddSubject, "subject"},
    {AddAddresses, "cc", {"CopyTo"}},
    {AddAddresses, "bcc", {"BlindCopyTo"}},
    {AddAddresses, "replyto", {"ReplyTo"}},
};
constexpr NoteKind kMail = {kSearchEventMessage, ReadReceivedTime, kMailSteps, true};

struct MailAddressField {
    unsigned short number;
    const char* item;  // null: the sender's
};
constexpr MailAddressField kMailAddressFields[] = {
    {0, "SendTo"}, {1, "CopyTo"}, {2, nullptr}, {13, "BlindCopyTo"}, {123, "ReplyTo"},
};

}  // namespace

bool IndexMailNote(NOTEHANDLE note, INDEXCONTEXT* context)
{
    return IndexNoteAs(kMail, note, context);
}

SearchEngineResult IndexSimpleMailItem(NOTEHANDLE note, unsigned short itemNumber, SearchEngineEvent& event,
                                       const char* key)
{
    for (const MailAddressField& field : kMailAddressFields)
        if (field.number == itemNumber)
            return IndexItem(note, kIndexAddresses, field.item != nullptr ? field.item : SenderItem(note), key, event,
                             false);
    return IndexMailText(note, itemNumber, event, key);
}
