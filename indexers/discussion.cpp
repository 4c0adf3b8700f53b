// indexers/discussion.cpp: a discussion posting as a metadata event.
// A posting is dated by its creation: a later correction does not make it news.
#include "indexers/discussion.h"

#include "content/buffers.h"
#include "content/item_text.h"
#include "content/note_times.h"
#include "indexers/classification.h"
#include "indexers/note_kind.h"

namespace {

bool ReadCreationTime(IndexJob& job)
{
    return GetCreationTime(job.note, job.time);
}

// The first of the items that is there, even when it is empty; a posting without any has an empty title.
SearchEngineResult AddTitle(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    for (const char* item : step.items)
        if (item != nullptr && HasItem(job.note, item))
            return IndexItem(job.note, kIndexText, item, step.key, event, false);
    return IndexItemBuffer("", 0, step.key, event, true);
}

// The first of the items that names anyone; a posting without any has empty authors.
void TryAuthors(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    Buffer6[0] = '\0';
    WORD length = 0;
    for (const char* item : step.items)
        if (item != nullptr && length == 0)
            length = GetAddressList(job.note, item, Buffer6, kBufferLimit);
    static_cast<void>(IndexItemBuffer(Buffer6, length, step.key, event, true));
}

constexpr PropertyStep kPostingSteps[] = {
    {AddBody},
    {AddNoteUrl, kNoteUrlKey},
    {AddTitle, "title", {"Subject", "Topic"}},
};

// The authors are added whatever became of the rest, and their own result is not looked at.
SearchEngineResult AddPosting(const PropertyStep& step, IndexJob& job, SearchEngineEvent& event)
{
    const SearchEngineResult result = TakeSteps(kPostingSteps, job, event);
    TryAuthors(step, job, event);
    return result;
}

constexpr PropertyStep kDiscussionSteps[] = {
    {AddReferenceTime, "message_time"},
    {AddPosting, "discussion_authors", {"From", "Author"}},
};
constexpr NoteKind kDiscussion = {kSearchEventDiscussion, ReadCreationTime, kDiscussionSteps, false};

}  // namespace

bool IndexDiscussionNote(NOTEHANDLE note, INDEXCONTEXT* context)
{
    return IndexNoteAs(kDiscussion, note, context);
}
