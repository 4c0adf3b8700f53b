// client/check/note_fate.cpp: what becomes of a note at its indexing.
#include "client/check/note_fate.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "client/store/note_link.h"
#include "client/store/open_database.h"
#include "client/store/timedate.h"

namespace pavex {

namespace {

constexpr const SearchKind& kMail = kSearchKinds[0];
constexpr const SearchKind& kCalendar = kSearchKinds[1];
constexpr const SearchKind& kTask = kSearchKinds[2];
constexpr const SearchKind& kContact = kSearchKinds[3];
constexpr const SearchKind& kJournal = kSearchKinds[4];
constexpr const SearchKind& kDiscussion = kSearchKinds[5];
constexpr const SearchKind& kHistory = kSearchKinds[6];
constexpr const SearchKind& kOther = kSearchKinds[7];

constexpr FateText kFates[] = {
    {Fate::kIndexed, "indexed", "is indexed", ""},
    {Fate::kDraft, "draft", "was never sent, and drafts are not indexed",
     "Have them indexed with: pavex settings --drafts on --yes"},
    {Fate::kChat, "chat", "is a saved chat, and chats are not indexed",
     "Have them indexed by taking GDSNoIndexChats out of the settings file, then: pavex check --repair"},
    {Fate::kNoEntryDates, "no-dates", "is a calendar entry without the dates to be found on",
     "It needs CalendarDateTime, StartDateTime and EndDateTime, the end not before the start."},
    {Fate::kNoTaskDay, "no-day", "is a task without a day of its own", "It needs CalendarDateTime."},
    {Fate::kNoTime, "no-time", "has no date that can be understood", "Saving it again gives it one."},
    {Fate::kOtherNote, "other-notes", "is of no known kind, and such notes are not indexed",
     "Have them indexed by taking GoogleNoIndexAll out of the settings file, then: pavex check --repair"},
    {Fate::kHistoryOff, "history-off", "belongs to the history, which is not indexed",
     "Have it indexed with: pavex settings --history on, then: pavex check --repair"},
    {Fate::kNoHistoryEntry, "no-history-entry", "lies in the history but is no entry of it",
     "Entries are made by: pavex open"},
    {Fate::kLeadsNowhere, "leads-nowhere", "is an entry of the history that leads to no note", ""},
};
static_assert(
    [] {
        size_t index = 0;
        for (const FateText& row : kFates)
            if (static_cast<size_t>(row.fate) != index++)
                return false;
        return true;
    }(),
    "rows are found by their number");

struct FormRow {
    const char* form;
    const SearchKind* kind;
};
constexpr FormRow kForms[] = {
    {"Appointment", &kCalendar},
    {"Task", &kTask},
    {"Person", &kContact},
    {"JournalEntry", &kJournal},
    {"CleanSheet", &kJournal},
    {"MainTopic", &kDiscussion},
    {"Response", &kDiscussion},
    {"ResponseToResponse", &kDiscussion},
    {"Announcement", &kDiscussion},
    {"Memo", &kMail},
    {"Reply", &kMail},
    {"Reply With History", &kMail},
    {"Notice", &kMail},
    {"TaskNotice", &kMail},
    {kHistoryForm, &kHistory},
};

// A note without a form of mail is mail all the same when it has most of what mail has.
struct MailSignRow {
    int points;
    std::initializer_list<const char*> items;  // the first that is there counts
};
const MailSignRow kMailSigns[] = {
    {1, {"SendTo", "EnterSendTo"}},
    {1, {"CopyTo", "EnterCopyTo", "ReplyTo"}},
    {1, {"Subject"}},
    {1, {"From"}},
    {2, {"PostedDate"}},
};
constexpr int kMailPointsNeeded = 4;

bool Has(NOTEHANDLE note, const char* item)
{
    return VLTItemInfo(note, item, static_cast<WORD>(std::strlen(item)), nullptr, nullptr, nullptr, nullptr) == 0;
}

const SearchKind* KindOfForm(NOTEHANDLE note)
{
    constexpr WORD kFormBytes = 255;
    std::array<char, kFormBytes + 1> text{};
    const std::string_view form(text.data(), VLTItemGetText(note, "Form", text.data(), kFormBytes));
    for (const FormRow& row : kForms)
        if (form.size() == std::strlen(row.form) && strncasecmp(form.data(), row.form, form.size()) == 0)
            return row.kind;
    return nullptr;
}

bool LooksLikeMail(NOTEHANDLE note)
{
    int points = 0;
    for (const MailSignRow& sign : kMailSigns)
        if (std::ranges::any_of(sign.items, [note](const char* item) { return Has(note, item); }))
            points += sign.points;
    return points >= kMailPointsNeeded;
}

// In a database that is not the history's.
const SearchKind& KindOfNote(NOTEHANDLE note, const IndexSwitches& switches)
{
    const SearchKind* const form = KindOfForm(note);
    if (form == &kCalendar || form == &kTask || (form == &kDiscussion && switches.discussion))
        return *form;
    if (form == &kMail || LooksLikeMail(note))
        return kMail;
    return form == &kContact || form == &kJournal ? *form : kOther;
}

// A time that a metafile can carry, in seconds.
std::optional<int64_t> SecondsOf(const TIMEDATE& time)
{
    TIME fields{};
    fields.GM = TimeExtractTicks(&time) == kNoTimeOfDay ? TimeConstruct(TimeExtractDate(&time), 0) : time;
    if (TimeExtractJulianDate(&time) == kNoDate || TimeGMToLocalZone(&fields) || fields.month < 1)
        return std::nullopt;
    return UnixFromTime(time);
}

bool HasModifiedTime(NOTEHANDLE note)
{
    TIMEDATE modified{{kNoTimeOfDay, kNoDate}};
    VLTNoteGetInfo(note, kNoteInfoModified, &modified);
    return SecondsOf(modified).has_value();
}

bool HasCreationTime(NOTEHANDLE note)
{
    ORIGINATORID id{};
    id.Unid.Note = {{kNoTimeOfDay, kNoDate}};
    VLTNoteGetInfo(note, kNoteInfoOriginatorId, &id);
    return SecondsOf(id.Unid.Note).has_value();
}

// The values of an item that are times, read from its text: an item of text may hold some, too.  Values that are
// none are left out; of the first one only, isFirstATime tells.
struct ItemTimes {
    std::vector<int64_t> seconds;
    bool isFirstATime = false;
};

ItemTimes TimesOfItem(NOTEHANDLE note, const char* item)
{
    constexpr WORD kMostBytes = 32768;
    constexpr char kSeparator = '|';
    std::string text(size_t{kMostBytes} + 1, '\0');
    const WORD length = VLTItemConvertToText(note, item, text.data(), kMostBytes, kSeparator);
    ItemTimes times;
    bool isFirst = true;
    if (length >= kMostBytes)
        return times;
    char* rest = nullptr;
    text.resize(length);
    for (char* value = strtok_r(text.data(), "|", &rest); value != nullptr; value = strtok_r(nullptr, "|", &rest)) {
        TIMEDATE time{};
        char* next = value;
        const bool isTime =
            ConvertTextToTIMEDATE(nullptr, nullptr, &next, static_cast<WORD>(std::strlen(value)), &time) == 0;
        const std::optional<int64_t> seconds = isTime ? SecondsOf(time) : std::nullopt;
        if (isFirst)
            times.isFirstATime = seconds.has_value();
        isFirst = false;
        if (seconds)
            times.seconds.push_back(*seconds);
    }
    return times;
}

bool HasEntryDates(NOTEHANDLE note)
{
    if (!Has(note, "CalendarDateTime"))
        return false;
    const ItemTimes start = TimesOfItem(note, "StartDateTime");
    const ItemTimes end = TimesOfItem(note, "EndDateTime");
    return start.isFirstATime && end.isFirstATime && end.seconds.front() >= start.seconds.front() &&
           !TimesOfItem(note, "CalendarDateTime").seconds.empty();
}

Fate FateOfMail(NOTEHANDLE note, const IndexSwitches& switches)
{
    if (!Has(note, "PostedDate")) {
        if (Has(note, "$IMTranscript"))
            return !switches.chats ? Fate::kChat : HasModifiedTime(note) ? Fate::kIndexed : Fate::kNoTime;
        return !switches.drafts ? Fate::kDraft : HasModifiedTime(note) ? Fate::kIndexed : Fate::kNoTime;
    }
    constexpr WORD kPostedDate = 5;
    TIMEDATE posted{};
    const bool isPosted = MailGetMessageItemTimeDate(note, kPostedDate, &posted) == 0 && SecondsOf(posted);
    return isPosted || HasModifiedTime(note) ? Fate::kIndexed : Fate::kNoTime;
}

Fate FateOfKind(NOTEHANDLE note, const SearchKind& kind, const IndexSwitches& switches)
{
    if (&kind == &kMail)
        return FateOfMail(note, switches);
    if (&kind == &kOther && !switches.otherNotes)
        return Fate::kOtherNote;
    if (&kind == &kCalendar && !HasEntryDates(note))
        return Fate::kNoEntryDates;
    if (&kind == &kTask && !Has(note, "CalendarDateTime"))
        return Fate::kNoTaskDay;
    const bool hasTime = &kind == &kDiscussion ? HasCreationTime(note) : HasModifiedTime(note);
    return hasTime ? Fate::kIndexed : Fate::kNoTime;
}

bool LeadsToANote(NOTEHANDLE note)
{
    DBHANDLE handle = 0;
    NOTEID id = 0;
    VLTNoteGetInfo(note, kNoteInfoDatabase, &handle);
    VLTNoteGetInfo(note, kNoteInfoId, &id);
    Note entry;
    if (const auto database = DatabaseOf(handle); !database || database->Get(id, &entry) != 0)
        return false;
    const std::optional<NOTELINK> link = LinkOfHistoryNote(entry);
    return link && LinkFromUrl(UrlOfNote(link->replica, link->note));
}

NoteFate FateInHistory(NOTEHANDLE note, const IndexSwitches& switches)
{
    const bool isEntry = KindOfForm(note) == &kHistory && Has(note, "Title") && Has(note, "URL");
    const SearchKind* const kind = isEntry ? &kHistory : nullptr;
    if (!switches.history)
        return {Fate::kHistoryOff, kind};
    if (!isEntry)
        return {Fate::kNoHistoryEntry, kind};
    if (!HasModifiedTime(note))
        return {Fate::kNoTime, kind};
    return {LeadsToANote(note) ? Fate::kIndexed : Fate::kLeadsNowhere, kind};
}

}  // namespace

const FateText& TextOfFate(Fate fate)
{
    return kFates[static_cast<size_t>(fate)];
}

IndexSwitches ReadIndexSwitches()
{
    const auto isSet = [](const char* variable) { return OSGetEnvironmentLong(variable) != 0; };
    IndexSwitches switches;
    switches.encrypted = isSet("GDSIndexEncrypted");
    switches.drafts = isSet("GDSIndexDrafts");
    switches.chats = !isSet("GDSNoIndexChats");
    switches.discussion = isSet("GDSIndexDiscussion");
    switches.history = !isSet("GDSNoIndexHistory");
    switches.otherNotes = !isSet("GoogleNoIndexAll");
    switches.deletions = !isSet("GoogleNoDelete");
    return switches;
}

NoteFate FateOfNote(NOTEHANDLE note, bool isHistory, const IndexSwitches& switches)
{
    // Without a fitting key the note is indexed by what can be read of it.
    if (switches.encrypted)
        static_cast<void>(VLTNoteDecrypt(note, 0, nullptr));
    if (isHistory)
        return FateInHistory(note, switches);
    const SearchKind& kind = KindOfNote(note, switches);
    return {FateOfKind(note, kind, switches), &kind};
}

}  // namespace pavex
