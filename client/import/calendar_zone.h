// client/import/calendar_zone.h: the time zones that the times of a calendar are written in.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include <libical/ical.h>

namespace pavex {

// A time as a calendar writes it.
struct CalendarTime {
    icaltimetype local{};  // without a zone of its own
    std::string zone;      // the TZID; empty: UTC or floating
    bool utc = false;
    bool date = false;  // a day, without a time of day
};

// Seconds since 1970; of a day its midnight GMT.
struct CalendarInstant {
    int64_t seconds = 0;
    bool date = false;

    bool operator==(const CalendarInstant&) const = default;
    bool operator<(const CalendarInstant& other) const
    {
        return seconds != other.seconds ? seconds < other.seconds : date < other.date;
    }
};

// The zones of one calendar: by its own definitions, else by name (also those of other calendar programs: "W. Europe
// Standard Time", "/example.org/1/Europe/Berlin"), else by the location that the definition names; a floating time and
// one of a zone that nobody knows is a time of the user's own zone.
class CalendarZones {
public:
    CalendarZones();
    ~CalendarZones();

    // definition: the lines of a VTIMEZONE.  The first one of a name counts, and only when it makes sense.
    void Define(const std::string& name, const std::string& definition);
    // False when times of the zone are taken for the user's own.
    bool Knows(const std::string& zone);

    CalendarInstant InstantOf(const CalendarTime& time);
    // The local time at an instant of another time's zone, for rules that end at one.
    icaltimetype LocalOf(int64_t seconds, const CalendarTime& like);

private:
    struct Zone;
    Zone& Find(const std::string& name);

    std::map<std::string, std::string> definitions_;  // not yet needed
    std::map<std::string, std::unique_ptr<Zone>> zones_;
};

}  // namespace pavex
