// client/import/vcard_date.cpp: digits in a fixed order, separators wherever their writer put them.
#include "client/import/vcard_date.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

namespace pavex {
namespace {

constexpr int kFirstYear = 1000;  // what is before stands for "not known" in some programs

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// The digits of a part; nothing when anything but digits and the separator is in it.
std::optional<std::string> DigitsOf(std::string_view part, char separator)
{
    std::string digits;
    for (const char c : part) {
        if (IsDigit(c))
            digits += c;
        else if (c != separator || digits.empty())
            return std::nullopt;
    }
    return digits;
}

int NumberAt(std::string_view digits, size_t at, size_t count)
{
    int number = 0;
    for (const char c : digits.substr(at, count))
        number = number * 10 + (c - '0');
    return number;
}

std::optional<std::chrono::sys_days> ReadDay(std::string_view part)
{
    const std::optional<std::string> digits = DigitsOf(part, '-');
    if (!digits || digits->size() != 8)
        return std::nullopt;
    const std::chrono::year_month_day day{std::chrono::year(NumberAt(*digits, 0, 4)),
                                          std::chrono::month(static_cast<unsigned>(NumberAt(*digits, 4, 2))),
                                          std::chrono::day(static_cast<unsigned>(NumberAt(*digits, 6, 2)))};
    return day.ok() && day.year() >= std::chrono::year(kFirstYear) ? std::optional(std::chrono::sys_days(day))
                                                                   : std::nullopt;
}

// "Z", "+01:00", "-0830", "+01" or nothing.
std::optional<std::chrono::minutes> ReadZone(std::string_view part)
{
    if (part.empty() || part == "Z" || part == "z")
        return std::chrono::minutes(0);
    const std::optional<std::string> digits = DigitsOf(part.substr(1), ':');
    if (!digits || (digits->size() != 2 && digits->size() != 4) || (part[0] != '+' && part[0] != '-'))
        return std::nullopt;
    const std::chrono::minutes east(NumberAt(*digits, 0, 2) * 60 + NumberAt(*digits, 2, 2));
    return part[0] == '-' ? -east : east;
}

// Seconds since midnight GMT of a time of day, its fraction left out; below 0 or above a day by its zone.
std::optional<std::chrono::seconds> ReadTimeOfDay(std::string_view part)
{
    const size_t zoneAt = std::min(part.find_first_of("Zz+-"), part.size());
    const std::string_view clock = part.substr(0, part.find_first_of(".,Zz+-"));
    const std::optional<std::string> digits = DigitsOf(clock, ':');
    const std::optional<std::chrono::minutes> zone = ReadZone(part.substr(zoneAt));
    if (!digits || !zone || digits->size() < 2 || digits->size() > 6 || digits->size() % 2 != 0)
        return std::nullopt;
    const int hours = NumberAt(*digits, 0, 2);
    const int minutes = digits->size() > 2 ? NumberAt(*digits, 2, 2) : 0;
    const int seconds = digits->size() > 4 ? NumberAt(*digits, 4, 2) : 0;
    if (hours > 24 || minutes > 59 || seconds > 60)
        return std::nullopt;
    return std::chrono::hours(hours) + std::chrono::minutes(minutes) + std::chrono::seconds(seconds) - *zone;
}

struct DateParts {
    std::string_view day;
    std::string_view timeOfDay;
};

DateParts SplitDate(std::string_view text)
{
    const size_t separator = text.find_first_of("Tt ");
    if (separator == text.npos)
        return {text, {}};
    return {text.substr(0, separator), text.substr(separator + 1)};
}

}  // namespace

std::optional<TIMEDATE> ReadCardDay(std::string_view text)
{
    const DateParts parts = SplitDate(text);
    const std::optional<std::chrono::sys_days> day = ReadDay(parts.day);
    if (!day || (!parts.timeOfDay.empty() && !ReadTimeOfDay(parts.timeOfDay)))
        return std::nullopt;
    const std::chrono::year_month_day date(*day);
    std::array<char, 32> iso{};
    (void)std::snprintf(iso.data(), iso.size(), "%04d-%02u-%02u", static_cast<int>(date.year()),
                        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    return TimeFromIso(iso.data());
}

std::string CompactCardTime(std::string_view text)
{
    const DateParts parts = SplitDate(text);
    const std::optional<std::chrono::sys_days> day = ReadDay(parts.day);
    const std::optional<std::chrono::seconds> timeOfDay =
        parts.timeOfDay.empty() ? std::chrono::seconds(0) : ReadTimeOfDay(parts.timeOfDay);
    if (!day || !timeOfDay)
        return {};
    const std::chrono::sys_seconds time = *day + *timeOfDay;
    const auto midnight = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(midnight);
    const std::chrono::hh_mm_ss clock(time - midnight);
    std::array<char, 48> compact{};
    (void)std::snprintf(compact.data(), compact.size(), "%04d%02u%02uT%02d%02d%02dZ", static_cast<int>(date.year()),
                        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                        static_cast<int>(clock.seconds().count()));
    return compact.data();
}

std::optional<TIMEDATE> TimeOfCompact(const std::string& compact)
{
    if (compact.size() != std::string_view("YYYYMMDDTHHMMSSZ").size())
        return std::nullopt;
    std::string iso = compact;
    for (const size_t at : {13U, 11U})
        iso.insert(at, ":");
    for (const size_t at : {6U, 4U})
        iso.insert(at, "-");
    return TimeFromIso(iso);
}

}  // namespace pavex
