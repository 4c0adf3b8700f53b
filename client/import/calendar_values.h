// client/import/calendar_values.h: texts and people of an entry's properties.
#pragma once

#include <string>
#include <vector>

#include <libical/ical.h>

namespace pavex {

// Calls work with each property of the kind, in order.
template <typename Work> void EachProperty(icalcomponent* component, icalproperty_kind kind, const Work& work)
{
    for (icalproperty* property = icalcomponent_get_first_property(component, kind); property != nullptr;
         property = icalcomponent_get_next_property(component, kind))
        work(property);
}

// A property's text as UTF-8 without control characters; empty when its value is none.
std::string TextOfProperty(icalproperty* property);
// The same of the component's first property of the kind.
std::string FirstText(icalcomponent* component, icalproperty_kind kind);

// What the parser, or a look at the values, found to make no sense.
struct Misunderstood {
    bool rule = false;
    bool date = false;
    bool duration = false;
};
Misunderstood FindMisunderstood(icalcomponent* component);

// Who takes part, each as "Ann Lee <ann@x.org>".
struct People {
    std::string chair;
    std::vector<std::string> required;
    std::vector<std::string> optional;
};
People ReadPeople(icalcomponent* component);

}  // namespace pavex
