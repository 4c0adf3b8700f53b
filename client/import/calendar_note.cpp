// client/import/calendar_note.cpp: properties of an entry into items.
#include "client/import/calendar_note.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>
#include <vector>

#include "client/import/calendar_values.h"
#include "client/import/charset_text.h"
#include "client/import/digest.h"
#include "client/import/html_text.h"
#include "client/import/words.h"
#include "client/store/richtext.h"
#include "client/store/timedate.h"

namespace pavex {
namespace {

// Bytes of a text, and entries of a list, that its item can hold with room to spare.
constexpr size_t kLongestText = 16000;
constexpr size_t kLongestValue = 1000;  // one of a list
constexpr size_t kMostEntries = 1000;

constexpr int64_t kLongestDays = 36525;  // of a duration: a century

// How a task stands, as its form numbers it.
constexpr int kTaskOverdue = 0;
constexpr int kTaskCurrent = 1;
constexpr int kTaskFuture = 2;
constexpr int kTaskCancelled = 8;
constexpr int kTaskDone = 9;

// A task of one's own, and one that was given to others.
constexpr int kPersonalTask = 1;
constexpr int kAssignedTask = 2;

struct TextRow {
    icalproperty_kind kind;
    const char* label;  // before it in the body; empty: none
};
// What is read as text of the entry itself.
constexpr TextRow kBodyTexts[] = {
    {ICAL_DESCRIPTION_PROPERTY, ""},          {ICAL_COMMENT_PROPERTY, ""}, {ICAL_CONTACT_PROPERTY, "Contact: "},
    {ICAL_RESOURCES_PROPERTY, "Resources: "}, {ICAL_URL_PROPERTY, ""},     {ICAL_CONFERENCE_PROPERTY, ""},
};
// What a changed instance may say differently.
constexpr icalproperty_kind kChangedTexts[] = {ICAL_SUMMARY_PROPERTY, ICAL_LOCATION_PROPERTY,
                                               ICAL_DESCRIPTION_PROPERTY};

TIMEDATE StoreTime(const CalendarInstant& instant)
{
    TIMEDATE time = TimeFromUnix(instant.seconds);
    if (instant.date)
        time.Innards[0] = kNoTimeOfDay;
    return time;
}

class NoteMaker {
public:
    NoteMaker(const CalendarSeries& series, CalendarZones& zones, int64_t now, CalendarNote* made)
        : series_(series), main_(series.master != nullptr ? series.master : series.changes.front()), zones_(zones),
          now_(now), made_(made)
    {
    }

    bool MakeEvent(std::string* reason)
    {
        const std::optional<CalendarTime> start = TimeOfComponent(main_, ICAL_DTSTART_PROPERTY);
        if (!start) {
            *reason = "has no valid start (DTSTART)";
            return false;
        }
        Begin("Appointment");
        if (!AddOccurrences())
            Add(TimeItem("CalendarDateTime", StoreTime(zones_.InstantOf(*start))));
        Add(TimeItem("StartDateTime", StoreTime(zones_.InstantOf(*start))));
        Add(TimeItem("EndDateTime", StoreTime(EndOfEvent(*start))));
        AddPeople(ReadPeople(main_));
        AddText("Location", FirstText(main_, ICAL_LOCATION_PROPERTY));
        Finish();
        return true;
    }

    bool MakeTask()
    {
        Begin("Task");
        const std::optional<CalendarTime> start = TimeOfComponent(main_, ICAL_DTSTART_PROPERTY);
        const std::optional<CalendarInstant> due = DueOf(start);
        const bool repeats = start && AddOccurrences();
        if (!repeats)
            Add(TimeItem("CalendarDateTime", StoreTime(AnyTimeOf(start, due))));
        if (start)
            Add(TimeItem("StartDateTime", StoreTime(zones_.InstantOf(*start))));
        if (due)
            Add(TimeItem("DueDateTime", StoreTime(*due)));
        if (const auto completed = TimeOfComponent(main_, ICAL_COMPLETED_PROPERTY))
            Add(TimeItem("CompletedDateTime", StoreTime(zones_.InstantOf(*completed))));
        const People people = ReadPeople(main_);
        const bool assigned = !people.required.empty() || !people.optional.empty();
        Add(NumberItem("TaskType", assigned ? kAssignedTask : kPersonalTask));
        if (assigned)
            Add(TimeItem("PostedDate", StoreTime(WrittenTime("PostedDate"))));
        Add(NumberItem("DueState", StateOf(start, due)));
        AddImportance();
        AddPeople(people);
        AddText("Location", FirstText(main_, ICAL_LOCATION_PROPERTY));
        Finish();
        return true;
    }

    bool MakeJournal()
    {
        Begin("JournalEntry");
        std::optional<CalendarTime> time = TimeOfComponent(main_, ICAL_DTSTART_PROPERTY);
        if (!time)
            time = TimeOfComponent(main_, ICAL_CREATED_PROPERTY);
        if (time)
            Add(TimeItem("TimeCreated", StoreTime(zones_.InstantOf(*time))));
        Finish();
        return true;
    }

private:
    void Add(Item item) { made_->note.items.push_back(std::move(item)); }

    void AddText(const char* name, const std::string& text)
    {
        TellCut(text, kLongestText);
        if (!text.empty())
            Add(TextItem(name, Utf8Prefix(text, kLongestText)));
    }

    //   what  the values are, for the notice that there are too many.
    void AddList(const char* name, const char* what, std::vector<std::string> values)
    {
        if (values.size() > kMostEntries)
            Tell("only " + std::to_string(kMostEntries) + " of its " + what + " were taken");
        values.resize(std::min(values.size(), kMostEntries));
        for (std::string& value : values) {
            TellCut(value, kLongestValue);
            value = Utf8Prefix(value, kLongestValue);
        }
        if (!values.empty())
            Add(TextListItem(name, values));
    }

    void TellCut(const std::string& text, size_t longest)
    {
        if (text.size() > longest)
            Tell("a text of " + std::to_string(text.size()) + " bytes was cut after " + std::to_string(longest));
    }

    void Begin(const char* form)
    {
        const auto created = TimeOfComponent(main_, ICAL_CREATED_PROPERTY);
        auto modified = TimeOfComponent(main_, ICAL_LASTMODIFIED_PROPERTY);
        if (!modified)
            modified = TimeOfComponent(main_, ICAL_DTSTAMP_PROPERTY);
        made_->note.modified = modified ? StoreTime(zones_.InstantOf(*modified)) : TimeFromUnix(now_);
        if (created)
            made_->note.created = StoreTime(zones_.InstantOf(*created));
        ReadRevision();
        TellUnknownZone();
        TellLosses();
        Add(TextItem("Form", form));
        AddText("Subject", FirstText(main_, ICAL_SUMMARY_PROPERTY));
    }

    void TellUnknownZone()
    {
        const std::optional<CalendarTime> start = TimeOfComponent(main_, ICAL_DTSTART_PROPERTY);
        if (start && !start->zone.empty() && !zones_.Knows(start->zone))
            Tell("its time zone \"" + start->zone + "\" is not known: its times were taken as local ones");
    }

    void TellLosses()
    {
        Misunderstood all = FindMisunderstood(main_);
        for (icalcomponent* change : series_.changes) {
            const Misunderstood one = FindMisunderstood(change);
            all.rule = all.rule || one.rule;
            all.date = all.date || one.date;
            all.duration = all.duration || one.duration;
        }
        if (all.rule)
            Tell("its repetition rule is not understood");
        if (all.date)
            Tell("one of its dates is not understood");
        if (all.duration)
            Tell("its duration is not understood");
        if (series_.shortened)
            Tell("a text of more than 1 MB was shortened");
    }

    void ReadRevision()
    {
        icalproperty* const sequence = icalcomponent_get_first_property(main_, ICAL_SEQUENCE_PROPERTY);
        if (sequence != nullptr)
            made_->revision.sequence = static_cast<uint32_t>(std::max(0, icalproperty_get_sequence(sequence)));
        if (const auto changed = TimeOfComponent(main_, ICAL_LASTMODIFIED_PROPERTY)) {
            const icaltimetype utc = TimeOfInstant(*changed);
            std::array<char, 64> text{};
            (void)std::snprintf(text.data(), text.size(), "%04d%02d%02dT%02d%02d%02dZ", utc.year, utc.month, utc.day,
                                utc.hour, utc.minute, utc.second);
            made_->revision.changed = text.data();
        }
    }

    icaltimetype TimeOfInstant(const CalendarTime& time)
    {
        CalendarTime utc;
        utc.utc = true;
        return zones_.LocalOf(zones_.InstantOf(time).seconds, utc);
    }

    // False when none is left: the list needs one all the same, or the entry could not be found by its dates.
    bool AddOccurrences()
    {
        const int64_t today = now_ - now_ % 86400;
        const Occurrences occurrences = ListOccurrences(series_, zones_, today);
        if (occurrences.unreadable)
            Tell("its repetition rule could not be followed to its end");
        if (occurrences.skippedRules)
            Tell("only the first " + std::to_string(kMostRules) + " of its repetition rules were followed");
        if (occurrences.shortened)
            Tell("only " + std::to_string(occurrences.starts.size()) +
                 " of its occurrences were taken, those around today");
        if (occurrences.starts.empty())
            return false;
        std::vector<TIMEDATE> times;
        for (const CalendarInstant& start : occurrences.starts)
            times.push_back(StoreTime(start));
        Add(times.size() == 1 ? TimeItem("CalendarDateTime", times.front()) : TimeListItem("CalendarDateTime", times));
        return true;
    }

    void Tell(const std::string& notice) { made_->notice += made_->notice.empty() ? notice : "; " + notice; }

    // An event that ends before it starts could be found on no day.
    CalendarInstant EndOfEvent(const CalendarTime& start)
    {
        const CalendarInstant begin = zones_.InstantOf(start);
        const CalendarInstant end = EndOf(start, ICAL_DTEND_PROPERTY);
        if (end.seconds >= begin.seconds)
            return end;
        Tell("its end lies before its start and was not taken");
        return begin;
    }

    // By its own time, or the start and how long it takes; a day lasts one day, anything else no time.
    CalendarInstant EndOf(const CalendarTime& start, icalproperty_kind kind)
    {
        if (const std::optional<CalendarTime> end = TimeOfComponent(main_, kind))
            return zones_.InstantOf(*end);
        icalproperty* const property = icalcomponent_get_first_property(main_, ICAL_DURATION_PROPERTY);
        if (property == nullptr) {
            CalendarInstant end = zones_.InstantOf(start);
            end.seconds += start.date ? 86400 : 0;
            return end;
        }
        const icaldurationtype duration = icalproperty_get_duration(property);
        const int64_t sign = duration.is_neg != 0 ? -1 : 1;
        const int64_t days = std::min(int64_t{duration.days} + int64_t{duration.weeks} * 7, kLongestDays);
        const int64_t seconds = (int64_t{duration.hours} * 60 + duration.minutes) * 60 + duration.seconds;
        // Days are days of the calendar, also where one of them has 23 hours.
        CalendarTime end = start;
        end.local.day += static_cast<int>(sign * days);
        end.local = icaltime_normalize(end.local);
        CalendarInstant instant = zones_.InstantOf(end);
        instant.seconds += sign * std::min(seconds, kLongestDays * 86400);
        return instant;
    }

    std::optional<CalendarInstant> DueOf(const std::optional<CalendarTime>& start)
    {
        if (const std::optional<CalendarTime> due = TimeOfComponent(main_, ICAL_DUE_PROPERTY))
            return zones_.InstantOf(*due);
        if (start && icalcomponent_get_first_property(main_, ICAL_DURATION_PROPERTY) != nullptr)
            return EndOf(*start, ICAL_DUE_PROPERTY);
        return std::nullopt;
    }

    // A task without any date of its own still has its place in the calendar: where it was written.
    CalendarInstant AnyTimeOf(const std::optional<CalendarTime>& start, const std::optional<CalendarInstant>& due)
    {
        if (start)
            return zones_.InstantOf(*start);
        if (due)
            return *due;
        if (const std::optional<CalendarTime> completed = TimeOfComponent(main_, ICAL_COMPLETED_PROPERTY))
            return zones_.InstantOf(*completed);
        return WrittenTime("CalendarDateTime");
    }

    // When the entry was written; failing that when its file was, which says nothing about the entry.
    //   item  that will hold the time.
    CalendarInstant WrittenTime(const char* item)
    {
        for (const icalproperty_kind kind : {ICAL_CREATED_PROPERTY, ICAL_LASTMODIFIED_PROPERTY}) {
            if (const std::optional<CalendarTime> time = TimeOfComponent(main_, kind))
                return zones_.InstantOf(*time);
        }
        passingItems_.emplace_back(item);
        const std::optional<CalendarTime> stamp = TimeOfComponent(main_, ICAL_DTSTAMP_PROPERTY);
        return stamp ? zones_.InstantOf(*stamp) : CalendarInstant{now_ - now_ % 86400, true};
    }

    int StateOf(const std::optional<CalendarTime>& start, const std::optional<CalendarInstant>& due)
    {
        const icalproperty_status status = icalcomponent_get_status(main_);
        icalproperty* const percent = icalcomponent_get_first_property(main_, ICAL_PERCENTCOMPLETE_PROPERTY);
        const bool whole = percent != nullptr && icalproperty_get_percentcomplete(percent) >= 100;
        if (status == ICAL_STATUS_COMPLETED || whole ||
            icalcomponent_get_first_property(main_, ICAL_COMPLETED_PROPERTY) != nullptr)
            return kTaskDone;
        if (status == ICAL_STATUS_CANCELLED)
            return kTaskCancelled;
        // A task that is due on a day is not late before that day is over.
        if (due && due->seconds + (due->date ? 86400 : 0) <= now_)
            return kTaskOverdue;
        if (start && zones_.InstantOf(*start).seconds > now_ && status != ICAL_STATUS_INPROCESS)
            return kTaskFuture;
        return kTaskCurrent;
    }

    void AddImportance()
    {
        icalproperty* const property = icalcomponent_get_first_property(main_, ICAL_PRIORITY_PROPERTY);
        const int priority = property == nullptr ? 0 : icalproperty_get_priority(property);
        if (priority >= 1 && priority <= 9)
            Add(NumberItem("Importance", priority < 5 ? 1 : priority == 5 ? 2 : 3));
    }

    void AddPeople(const People& people)
    {
        AddText("Chair", people.chair);
        AddList("RequiredAttendees", "attendees", people.required);
        AddList("OptionalAttendees", "optional attendees", people.optional);
    }

    void Finish()
    {
        std::vector<std::string> categories;
        EachProperty(main_, ICAL_CATEGORIES_PROPERTY, [&](icalproperty* property) {
            if (std::string category = TextOfProperty(property); !category.empty())
                categories.push_back(std::move(category));
        });
        AddList("Categories", "categories", std::move(categories));
        AddBody();
        made_->digest = DigestOf(made_->note, passingItems_);
    }

    void AddBody()
    {
        RichTextBuilder body;
        for (const TextRow& row : kBodyTexts) {
            EachProperty(main_, row.kind, [&](icalproperty* property) {
                if (const std::string text = TextOfProperty(property); !text.empty())
                    body.AddLines(row.label + text);
            });
        }
        if (icalcomponent_get_first_property(main_, ICAL_DESCRIPTION_PROPERTY) == nullptr)
            AddHtml(&body);
        for (icalcomponent* change : series_.changes)
            AddChangedTexts(change, &body);
        Add(RichTextItem("Body", body.Records()));
    }

    // Some programs write the text as HTML only.
    void AddHtml(RichTextBuilder* body)
    {
        EachProperty(main_, ICAL_X_PROPERTY, [&](icalproperty* property) {
            const char* const name = icalproperty_get_x_name(property);
            if (name != nullptr && SameWord(name, "X-ALT-DESC"))
                body->AddLines(TextFromHtml(TextOfProperty(property)));
        });
    }

    void AddChangedTexts(icalcomponent* change, RichTextBuilder* body)
    {
        if (change == main_)
            return;
        for (const icalproperty_kind kind : kChangedTexts) {
            const std::string text = FirstText(change, kind);
            if (text != FirstText(main_, kind))
                body->AddLines(text);
        }
    }

    const CalendarSeries& series_;
    icalcomponent* main_;  // what the note says is read from it
    CalendarZones& zones_;
    int64_t now_;
    CalendarNote* made_;
    std::vector<std::string> passingItems_;  // whose time changes though the entry does not
};

}  // namespace

bool MakeCalendarNote(CalendarKind kind, const CalendarSeries& series, CalendarZones& zones, int64_t now,
                      CalendarNote* made, std::string* reason)
{
    NoteMaker maker(series, zones, now, made);
    switch (kind) {
    case CalendarKind::kEvent:
        return maker.MakeEvent(reason);
    case CalendarKind::kTask:
        return maker.MakeTask();
    case CalendarKind::kJournal:
        return maker.MakeJournal();
    }
    return false;
}

}  // namespace pavex
