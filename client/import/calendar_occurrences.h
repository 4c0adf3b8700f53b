// client/import/calendar_occurrences.h: when a repeating entry takes place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <libical/ical.h>

#include "client/import/calendar_zone.h"

namespace pavex {

// What a calendar's entries name a single instance by ("RECURRENCE-ID") may be moved or cancelled by an entry of
// its own; the entry that says how it repeats is the master.
struct CalendarSeries {
    icalcomponent* master = nullptr;  // null: only single instances are known
    std::vector<icalcomponent*> changes;
    bool shortened = false;  // a text of one of them was too long
};

// An entry's list of times holds so many.
constexpr size_t kMostOccurrences = 100;
// No program writes more than one or two rules for an entry; so many are followed.
constexpr int kMostRules = 16;

struct Occurrences {
    std::vector<CalendarInstant> starts;  // in order, at most kMostOccurrences, none twice
    bool shortened = false;               // there are more: past ones are dropped first, then the latest
    bool unreadable = false;              // a rule was not followed to its end, or not at all
    bool skippedRules = false;            // there are more rules than are followed
};

// All starts: the first one, those of rules and single dates, less the excluded ones, with changed instances
// where they were moved to.
//   today  seconds since 1970; an occurrence before is past.
Occurrences ListOccurrences(const CalendarSeries& series, CalendarZones& zones, int64_t today);

// The time of a property such as DTSTART; nothing when it has none that is valid.
std::optional<CalendarTime> TimeOfProperty(icalproperty* property);
// The same of the component's first property of the kind.
std::optional<CalendarTime> TimeOfComponent(icalcomponent* component, icalproperty_kind kind);

}  // namespace pavex
