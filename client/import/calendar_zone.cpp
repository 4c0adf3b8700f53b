// client/import/calendar_zone.cpp: definitions are read and names are known by ICU, whose answer never takes long.
#include "client/import/calendar_zone.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>
#include <utility>

#include <unicode/basictz.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>
#include <unicode/vtzone.h>

#include "client/import/content_lines.h"
#include "client/import/words.h"
#include "client/store/civil_date.h"

namespace pavex {
namespace {

// Forms of values: 'd' a digit, 's' a sign, else the character itself.
bool HasForm(std::string_view value, std::string_view form)
{
    return value.size() == form.size() && std::equal(value.begin(), value.end(), form.begin(), [](char c, char kind) {
               return kind == 'd' ? c >= '0' && c <= '9' : kind == 's' ? c == '+' || c == '-' : c == kind;
           });
}

bool IsLocalTime(std::string_view value)
{
    return HasForm(value, "ddddddddTdddddd");
}

bool IsOffset(std::string_view value)
{
    return HasForm(value, "sdddd") || HasForm(value, "sdddddd");
}

bool IsTimeList(std::string_view value)
{
    while (value.size() > 15 && IsLocalTime(value.substr(0, 15)) && value[15] == ',')
        value.remove_prefix(16);
    return IsLocalTime(value);
}

struct ZoneLineRow {
    std::string_view name;
    bool needed;
    bool (*valid)(std::string_view value);
};
// What a rule of a zone is made of.
constexpr ZoneLineRow kZoneLines[] = {
    {"DTSTART", true, IsLocalTime},
    {"TZOFFSETFROM", true, IsOffset},
    {"TZOFFSETTO", true, IsOffset},
    {"RDATE", false, IsTimeList},
    {"RRULE", false, [](std::string_view value) { return !value.empty(); }},
};

// The next line; *definition goes on behind it.
std::string_view TakeLine(std::string_view* definition)
{
    const std::string_view line = definition->substr(0, definition->find("\r\n"));
    definition->remove_prefix(std::min(line.size() + 2, definition->size()));
    return line;
}

std::string_view ValueOf(std::string_view line)
{
    return line.substr(std::min(ContentValue(line), line.size()));
}

// The name that some programs give beside one of their own.
std::string_view LocationOf(std::string_view definition)
{
    while (!definition.empty()) {
        const std::string_view line = TakeLine(&definition);
        if (ContentName(line) == "X-LIC-LOCATION")
            return TrimmedText(ValueOf(line));
    }
    return {};
}

// The rules of a definition in their plainest form; empty when there is none, or one that is not as it should be.
// ICU takes such a definition for a good one all the same, and then crashes on it.
class ZoneRules {
public:
    std::string Read(std::string_view definition)
    {
        while (!definition.empty() && good_) {
            const std::string_view line = TakeLine(&definition);
            Take(ContentName(line), ValueOf(line));
        }
        return good_ && rules_ > 0 ? text_ + "END:VTIMEZONE\r\n" : std::string();
    }

private:
    void Take(const std::string& name, std::string_view value)
    {
        const std::string part = ContentName(value);
        if (name == "BEGIN" && part != "VTIMEZONE") {
            rule_ = "BEGIN:" + part + "\r\n";
            has_.clear();
        } else if (name == "END" && part != "VTIMEZONE") {
            text_ += rule_ + "END:" + part + "\r\n";
            ++rules_;
            good_ = std::all_of(std::begin(kZoneLines), std::end(kZoneLines),
                                [this](const ZoneLineRow& row) { return !row.needed || has_.contains(row.name); });
        } else {
            TakeValue(name, std::string(value));
        }
    }

    void TakeValue(const std::string& name, std::string value)
    {
        for (const ZoneLineRow& row : kZoneLines) {
            if (row.name != name)
                continue;
            if (row.valid == IsLocalTime && HasForm(value, "dddddddd"))
                value += "T000000";
            good_ = row.valid(value) && (!row.needed || has_.insert(row.name).second);
            rule_.append(name).append(":").append(value).append("\r\n");
        }
    }

    std::string text_ = "BEGIN:VTIMEZONE\r\nTZID:Zone\r\n";
    std::string rule_;
    std::set<std::string_view> has_;  // in the rule
    int rules_ = 0;
    bool good_ = true;
};

std::unique_ptr<icu::TimeZone> ZoneByDefinition(const std::string& definition)
{
    const std::string rules = ZoneRules().Read(definition);
    if (rules.empty())
        return nullptr;
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::TimeZone> zone(icu::VTimeZone::createVTimeZone(icu::UnicodeString::fromUTF8(rules), status));
    return U_SUCCESS(status) ? std::move(zone) : nullptr;
}

std::unique_ptr<icu::TimeZone> ZoneById(const icu::UnicodeString& id)
{
    std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(id));
    if (zone && *zone == icu::TimeZone::getUnknown())
        zone.reset();
    return zone;
}

std::unique_ptr<icu::TimeZone> ZoneOfWindows(const icu::UnicodeString& name)
{
    icu::UnicodeString id;
    UErrorCode status = U_ZERO_ERROR;
    icu::TimeZone::getIDForWindowsID(name, nullptr, id, status);
    return U_SUCCESS(status) && !id.isEmpty() ? ZoneById(id) : nullptr;
}

// A name as it stands, then by its last parts: programs put their own path before it.
std::unique_ptr<icu::TimeZone> ZoneByName(std::string_view name)
{
    while (!name.empty()) {
        const icu::UnicodeString id = icu::UnicodeString::fromUTF8({name.data(), static_cast<int32_t>(name.size())});
        if (std::unique_ptr<icu::TimeZone> zone = ZoneById(id))
            return zone;
        if (std::unique_ptr<icu::TimeZone> zone = ZoneOfWindows(id))
            return zone;
        const size_t slash = name.find('/');
        if (slash == name.npos)
            break;
        name.remove_prefix(slash + 1);
    }
    return nullptr;
}

// Seconds since 1970 as if the time were one of UTC.
int64_t SecondsOf(const icaltimetype& time)
{
    const int64_t day = DayFromCivil({time.year, time.month, time.day}) - int64_t{kUnixEpochDay};
    const int64_t inDay = time.is_date ? 0 : (int64_t{time.hour} * 60 + time.minute) * 60 + time.second;
    return day * 86400 + inDay;
}

icaltimetype TimeOf(int64_t seconds)
{
    const int64_t days = (seconds >= 0 ? seconds : seconds - 86399) / 86400;
    const auto inDay = static_cast<int>(seconds - days * 86400);
    const CivilDate date = CivilFromDay(static_cast<uint32_t>(days + kUnixEpochDay));
    icaltimetype time = icaltime_null_time();
    time.year = date.year;
    time.month = date.month;
    time.day = date.day;
    time.hour = inDay / 3600;
    time.minute = inDay / 60 % 60;
    time.second = inDay % 60;
    return time;
}

}  // namespace

struct CalendarZones::Zone {
    std::unique_ptr<icu::TimeZone> rules;
    bool known = true;

    // Seconds east of Greenwich.  Of an hour that comes twice, when the clocks are set back, the first counts.
    //   seconds  since 1970, of the zone's own time when local, else of UTC.
    int Offset(int64_t seconds, bool local) const
    {
        int32_t raw = 0;
        int32_t daylight = 0;
        UErrorCode status = U_ZERO_ERROR;
        const UDate date = static_cast<UDate>(seconds) * 1000;
        const auto* const exact = dynamic_cast<const icu::BasicTimeZone*>(rules.get());
        if (local && exact != nullptr)
            exact->getOffsetFromLocal(date, UCAL_TZ_LOCAL_FORMER, UCAL_TZ_LOCAL_FORMER, raw, daylight, status);
        else
            rules->getOffset(date, local ? 1 : 0, raw, daylight, status);
        return U_SUCCESS(status) ? (raw + daylight) / 1000 : 0;
    }
};

CalendarZones::CalendarZones() = default;
CalendarZones::~CalendarZones() = default;

void CalendarZones::Define(const std::string& name, const std::string& definition)
{
    definitions_.try_emplace(name, definition);
}

CalendarZones::Zone& CalendarZones::Find(const std::string& name)
{
    std::unique_ptr<Zone>& zone = zones_[name];
    if (zone)
        return *zone;
    zone = std::make_unique<Zone>();
    const auto definition = definitions_.find(name);
    const bool defined = definition != definitions_.end();
    if (defined)
        zone->rules = ZoneByDefinition(definition->second);
    if (!zone->rules)
        zone->rules = ZoneByName(name);
    if (!zone->rules && defined)
        zone->rules = ZoneByName(LocationOf(definition->second));
    zone->known = zone->rules != nullptr;
    if (!zone->rules)
        zone->rules.reset(icu::TimeZone::detectHostTimeZone());
    return *zone;
}

bool CalendarZones::Knows(const std::string& zone)
{
    return Find(zone).known;
}

CalendarInstant CalendarZones::InstantOf(const CalendarTime& time)
{
    const int64_t seconds = SecondsOf(time.local);
    if (time.date)
        return {seconds, true};
    return {time.utc ? seconds : seconds - Find(time.zone).Offset(seconds, true), false};
}

icaltimetype CalendarZones::LocalOf(int64_t seconds, const CalendarTime& like)
{
    return TimeOf(like.utc ? seconds : seconds + Find(like.zone).Offset(seconds, false));
}

}  // namespace pavex
