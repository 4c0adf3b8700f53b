// indexers/classification.cpp: which kind a note is.
// Forms are compared whole and without regard to ASCII case: no trimming, no prefixes.
#include "indexers/classification.h"

#include <cstring>
#include <initializer_list>
#include <string_view>

#include "content/scs_text.h"

namespace {

constexpr WORD kFormBytes = 255;

enum class FormKind { kCalendar, kTask, kContact, kJournal, kDiscussion, kMail, kHistory };

struct FormRow {
    const char* form;
    FormKind kind;
};
constexpr FormRow kForms[] = {
    {"Appointment", FormKind::kCalendar},
    {"Task", FormKind::kTask},
    {"Person", FormKind::kContact},
    {"JournalEntry", FormKind::kJournal},
    {"CleanSheet", FormKind::kJournal},
    {"MainTopic", FormKind::kDiscussion},
    {"Response", FormKind::kDiscussion},
    {"ResponseToResponse", FormKind::kDiscussion},
    {"Announcement", FormKind::kDiscussion},
    {"Memo", FormKind::kMail},
    {"Reply", FormKind::kMail},
    {"Reply With History", FormKind::kMail},
    {"Notice", FormKind::kMail},
    {"TaskNotice", FormKind::kMail},
    {"HistoryListEntry", FormKind::kHistory},
};

bool HasFormOf(NOTEHANDLE note, FormKind kind)
{
    char form[kFormBytes + 1];
    if (note == 0)
        return false;
    // The length counts: a line break in the value, a NUL, does not end the form.
    const std::string_view text(form, VLTItemGetText(note, "Form", form, kFormBytes));
    for (const FormRow& row : kForms)
        if (row.kind == kind && SameWithoutCase(text, row.form))
            return true;
    return false;
}

// One row is worth its points once, for the first of its items that is there.
struct MailScoreRow {
    int points;
    std::initializer_list<const char*> items;
};
const MailScoreRow kMailScore[] = {
    {1, {"SendTo", "EnterSendTo"}},
    {1, {"CopyTo", "EnterCopyTo", "ReplyTo"}},
    {1, {"Subject"}},
    {1, {"From"}},
    {2, {"PostedDate"}},
};
constexpr int kMailScoreNeeded = 4;  // of 6

int MailScore(NOTEHANDLE note)
{
    int score = 0;
    for (const MailScoreRow& row : kMailScore)
        for (const char* item : row.items)
            if (HasItem(note, item)) {
                score += row.points;
                break;
            }
    return score;
}

}  // namespace

bool HasItem(NOTEHANDLE note, const char* item)
{
    return VLTItemInfo(note, item, static_cast<WORD>(strlen(item)), nullptr, nullptr, nullptr, nullptr) == kStatusOk;
}

bool IsCalendarNote(NOTEHANDLE note)
{
    return HasFormOf(note, FormKind::kCalendar);
}

bool IsTaskNote(NOTEHANDLE note)
{
    return HasFormOf(note, FormKind::kTask);
}

bool IsContactNote(NOTEHANDLE note)
{
    return HasFormOf(note, FormKind::kContact);
}

bool IsJournalNote(NOTEHANDLE note)
{
    return HasFormOf(note, FormKind::kJournal);
}

bool IsDiscussionNote(NOTEHANDLE note)
{
    return HasFormOf(note, FormKind::kDiscussion);
}

bool IsMailNote(NOTEHANDLE note)
{
    return HasFormOf(note, FormKind::kMail) || (note != 0 && MailScore(note) >= kMailScoreNeeded);
}

bool IsHistoryNote(NOTEHANDLE note)
{
    return HasFormOf(note, FormKind::kHistory) && HasItem(note, "Title") && HasItem(note, "URL");
}
