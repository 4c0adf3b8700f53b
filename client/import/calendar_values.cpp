// client/import/calendar_values.cpp
#include "client/import/calendar_values.h"

#include <string_view>
#include <utility>

#include "client/import/calendar_occurrences.h"
#include "client/import/charset_text.h"
#include "client/import/words.h"

namespace pavex {
namespace {

std::string ParameterText(icalproperty* property, icalparameter_kind kind, const char* (*read)(const icalparameter*))
{
    icalparameter* const parameter = icalproperty_get_first_parameter(property, kind);
    const char* const text = parameter == nullptr ? nullptr : read(parameter);
    return text == nullptr ? std::string() : CleanText(text);
}

// "Ann Lee <ann@x.org>", as people stand in mail.
std::string PersonOf(icalproperty* property)
{
    icalvalue* const value = icalproperty_get_value(property);
    std::string address = value != nullptr && icalvalue_isa(value) == ICAL_CALADDRESS_VALUE
                              ? CleanText(icalvalue_get_caladdress(value))
                              : TextOfProperty(property);
    if (BeginsWithWord(address, "mailto:"))
        address.erase(0, 7);
    const std::string name = ParameterText(property, ICAL_CN_PARAMETER, icalparameter_get_cn);
    if (name.empty() || name == address)
        return address;
    return address.find('@') == address.npos ? name : name + " <" + address + ">";
}

struct LossRow {
    icalproperty_kind kind;
    const char* name;
    bool Misunderstood::*loss;
};
constexpr LossRow kLosses[] = {
    {ICAL_RRULE_PROPERTY, "RRULE", &Misunderstood::rule},
    {ICAL_EXRULE_PROPERTY, "EXRULE", &Misunderstood::rule},
    {ICAL_DTSTART_PROPERTY, "DTSTART", &Misunderstood::date},
    {ICAL_DTEND_PROPERTY, "DTEND", &Misunderstood::date},
    {ICAL_DUE_PROPERTY, "DUE", &Misunderstood::date},
    {ICAL_COMPLETED_PROPERTY, "COMPLETED", &Misunderstood::date},
    {ICAL_RDATE_PROPERTY, "RDATE", &Misunderstood::date},
    {ICAL_EXDATE_PROPERTY, "EXDATE", &Misunderstood::date},
    {ICAL_RECURRENCEID_PROPERTY, "RECURRENCE-ID", &Misunderstood::date},
    {ICAL_DURATION_PROPERTY, "DURATION", &Misunderstood::duration},
};

// libical leaves an error in the place of a property: "Can't parse as RECUR value in RRULE property. ...".
// A rule of which nothing was left has no value; a date without one is only not known.
bool IsErrorOf(const LossRow& row, std::string_view error)
{
    const std::string property = std::string(row.name) + " property.";
    const bool rule = row.loss == &Misunderstood::rule;
    return error.find(" value in " + property) != error.npos ||
           (rule && error.find("No value for " + property) != error.npos);
}

}  // namespace

Misunderstood FindMisunderstood(icalcomponent* component)
{
    Misunderstood found;
    EachProperty(component, ICAL_XLICERROR_PROPERTY, [&](icalproperty* property) {
        const char* const error = icalproperty_get_xlicerror(property);
        for (const LossRow& row : kLosses)
            found.*row.loss = found.*row.loss || (error != nullptr && IsErrorOf(row, error));
    });
    for (const LossRow& row : kLosses) {
        if (row.loss != &Misunderstood::date)
            continue;
        EachProperty(component, row.kind,
                     [&](icalproperty* property) { found.date = found.date || !TimeOfProperty(property); });
    }
    return found;
}

std::string TextOfProperty(icalproperty* property)
{
    icalvalue* const value = icalproperty_get_value(property);
    const char* const text = value == nullptr                            ? nullptr
                             : icalvalue_isa(value) == ICAL_TEXT_VALUE   ? icalvalue_get_text(value)
                             : icalvalue_isa(value) == ICAL_X_VALUE      ? icalvalue_get_x(value)
                             : icalvalue_isa(value) == ICAL_STRING_VALUE ? icalvalue_get_string(value)
                             : icalvalue_isa(value) == ICAL_URI_VALUE    ? icalvalue_get_uri(value)
                                                                         : nullptr;
    return text == nullptr ? std::string() : CleanText(text);
}

std::string FirstText(icalcomponent* component, icalproperty_kind kind)
{
    icalproperty* const property = icalcomponent_get_first_property(component, kind);
    return property == nullptr ? std::string() : TextOfProperty(property);
}

People ReadPeople(icalcomponent* component)
{
    People people;
    EachProperty(component, ICAL_ORGANIZER_PROPERTY,
                 [&](icalproperty* property) { people.chair = PersonOf(property); });
    EachProperty(component, ICAL_ATTENDEE_PROPERTY, [&](icalproperty* property) {
        icalparameter* const role = icalproperty_get_first_parameter(property, ICAL_ROLE_PARAMETER);
        const icalparameter_role value = role == nullptr ? ICAL_ROLE_REQPARTICIPANT : icalparameter_get_role(role);
        std::string person = PersonOf(property);
        if (person.empty())
            return;
        if (value == ICAL_ROLE_CHAIR && people.chair.empty())
            people.chair = person;
        const bool optional = value == ICAL_ROLE_OPTPARTICIPANT || value == ICAL_ROLE_NONPARTICIPANT;
        (optional ? people.optional : people.required).push_back(std::move(person));
    });
    return people;
}

}  // namespace pavex
