// tests/indexers/property_faults.h: sees every property and every send of an event, and makes one fail.
// The event itself never fails; what the indexers do when it does is their contract all the same.  The
// linker routes the event's calls through here (--wrap).
#pragma once

#include <string>
#include <vector>

#include "metastore/search_engine_event.h"

// While it lives, the failing-th property of this process (from 1; 0: none) is refused with -7.
class PropertyFault {
public:
    explicit PropertyFault(int failing, bool sendFails = false);
    ~PropertyFault();
    PropertyFault(const PropertyFault&) = delete;
    PropertyFault& operator=(const PropertyFault&) = delete;

    const std::vector<std::string>& Keys() const;  // in the order in which they were added
    bool Sent() const;
};

// While it lives, no note has a time of creation or modification.
class NoteTimesFault {
public:
    NoteTimesFault();
    ~NoteTimesFault();
    NoteTimesFault(const NoteTimesFault&) = delete;
    NoteTimesFault& operator=(const NoteTimesFault&) = delete;
};

// While it lives, the clock's time has neither a date nor a time of day.
class ClockFault {
public:
    ClockFault();
    ~ClockFault();
    ClockFault(const ClockFault&) = delete;
    ClockFault& operator=(const ClockFault&) = delete;
};
