// client/import/mail_date.cpp: dates read by what each word can be, not by where it stands.
#include "client/import/mail_date.h"

#include <array>
#include <string>
#include <vector>

namespace pavex {
namespace {

constexpr int kFirstYear = 1900;
constexpr int kLastYear = 2199;
constexpr int kFarthestZone = 14 * 60;  // minutes

struct ZoneRow {
    const char* name;
    int minutes;
};
constexpr ZoneRow kZones[] = {
    {"gmt", 0},     {"ut", 0},      {"utc", 0},    {"z", 0},      {"wet", 0},    {"west", 60},  {"bst", 60},
    {"cet", 60},    {"met", 60},    {"mez", 60},   {"cest", 120}, {"mest", 120}, {"mesz", 120}, {"eet", 120},
    {"eest", 180},  {"msk", 180},   {"msd", 240},  {"jst", 540},  {"kst", 540},  {"hkt", 480},  {"est", -300},
    {"edt", -240},  {"cst", -360},  {"cdt", -300}, {"mst", -420}, {"mdt", -360}, {"pst", -480}, {"pdt", -420},
    {"akst", -540}, {"akdt", -480}, {"hst", -600}, {"aest", 600}, {"aedt", 660}, {"nzst", 720}, {"nzdt", 780},
};
constexpr std::array<const char*, 12> kMonths = {"jan", "feb", "mar", "apr", "may", "jun",
                                                 "jul", "aug", "sep", "oct", "nov", "dec"};
constexpr std::array<const char*, 7> kWeekdays = {"mon", "tue", "wed", "thu", "fri", "sat", "sun"};

struct DateParts {
    int day = 0;
    int month = 0;
    int year = -1;
    int hour = -1;
    int minute = 0;
    int second = 0;
    int zone = 0;  // minutes east
    bool hasZone = false;
    bool bad = false;
};

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool AllDigits(std::string_view text)
{
    for (const char c : text) {
        if (!IsDigit(c))
            return false;
    }
    return !text.empty();
}

int Number(std::string_view digits)
{
    int value = 0;
    for (const char c : digits.substr(0, 6))
        value = value * 10 + (c - '0');
    return value;
}

std::string Lower(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    return lower;
}

template <size_t N> int NameIndex(std::string_view word, const std::array<const char*, N>& names)
{
    if (word.size() < 3 || word.size() > 9)
        return -1;
    const std::string lower = Lower(word.substr(0, 3));
    for (size_t i = 0; i < N; ++i) {
        if (lower == names[i])
            return static_cast<int>(i);
    }
    return -1;
}

// Words without comments; "5-Mar-2007", "14:00:00+0100" and "2007-03-05T14:00" are taken apart.
std::vector<std::string_view> Words(std::string_view text)
{
    constexpr size_t kMost = 24;
    std::vector<std::string_view> words;
    int depth = 0;
    size_t start = text.npos;
    for (size_t i = 0; i <= text.size() && words.size() < kMost; ++i) {
        const char c = i < text.size() ? text[i] : ' ';
        const bool separator = c == ' ' || c == '\t' || c == ',' || c == '(' || c == ')' || depth > 0;
        if (separator && start != text.npos) {
            words.push_back(text.substr(start, i - start));
            start = text.npos;
        }
        depth += c == '(' ? 1 : c == ')' && depth > 0 ? -1 : 0;
        if (!separator && start == text.npos)
            start = i;
    }
    return words;
}

// "+0100", "-05:00", "+1".
bool ReadZoneOffset(std::string_view word, DateParts* parts)
{
    if (word.size() < 2 || (word[0] != '+' && word[0] != '-'))
        return false;
    std::string digits;
    for (const char c : word.substr(1)) {
        if (IsDigit(c))
            digits += c;
        else if (c != ':')
            return false;
    }
    if (digits.empty() || digits.size() > 4)
        parts->bad = true;
    const int value = Number(digits);
    const int minutes = digits.size() <= 2 ? value * 60 : value / 100 * 60 + value % 100;
    parts->bad = parts->bad || minutes > kFarthestZone || (digits.size() > 2 && value % 100 > 59);
    parts->zone = word[0] == '-' ? -minutes : minutes;
    parts->hasZone = true;
    return true;
}

// "14:00", "14:00:00", "14:00:00.25", "14.00.00"; a zone may be glued to it.
bool ReadClock(std::string_view word, DateParts* parts)
{
    std::array<int, 3> fields = {0, 0, 0};
    size_t at = 0;
    size_t count = 0;
    while (count < 3) {
        size_t digits = 0;
        while (at + digits < word.size() && IsDigit(word[at + digits]))
            ++digits;
        if (digits == 0 || digits > 2)
            break;
        fields[count++] = Number(word.substr(at, digits));
        at += digits;
        if (at >= word.size() || word[at] != ':')
            break;
        ++at;
    }
    if (count < 2)
        return false;
    if (at < word.size() && word[at] == '.') {
        while (++at < word.size() && IsDigit(word[at])) {
        }
    }
    parts->hour = fields[0];
    parts->minute = fields[1];
    parts->second = fields[2];
    const std::string_view rest = word.substr(at);
    if (rest == "Z" || rest == "z")
        parts->hasZone = true;
    else if (!rest.empty())
        ReadZoneOffset(rest, parts);
    return true;
}

int FullYear(int year, size_t digits)
{
    if (digits <= 2)
        return year < 50 ? 2000 + year : 1900 + year;
    return digits == 3 ? 1900 + year : year;  // programs that count from 1900 wrote 107 for 2007
}

// "2007-03-05", perhaps with "T14:00:00Z"; "5-Mar-2007", "05/Mar/2007".
bool ReadGluedDate(std::string_view word, DateParts* parts)
{
    const size_t first = word.find_first_of("-/");
    if (first == word.npos || first == 0)
        return false;
    const size_t second = word.find(word[first], first + 1);
    if (second == word.npos)
        return false;
    const std::string_view a = word.substr(0, first);
    const std::string_view b = word.substr(first + 1, second - first - 1);
    std::string_view c = word.substr(second + 1);
    const int month = NameIndex(b, kMonths);
    if (AllDigits(a) && a.size() == 4 && AllDigits(b)) {
        const size_t time = c.find_first_of("Tt");
        if (time != c.npos && !ReadClock(c.substr(time + 1), parts))
            return false;
        c = c.substr(0, time);
        parts->year = Number(a);
        parts->month = Number(b);
        parts->day = AllDigits(c) ? Number(c) : 0;
        return true;
    }
    if (!AllDigits(a) || month < 0 || !AllDigits(c))
        return false;
    parts->day = Number(a);
    parts->month = month + 1;
    parts->year = FullYear(Number(c), c.size());
    return true;
}

void ReadNumber(std::string_view word, DateParts* parts)
{
    const int value = Number(word);
    if (parts->day == 0 && word.size() <= 2 && value >= 1 && value <= 31)
        parts->day = value;
    else if (parts->year < 0 && word.size() <= 4)
        parts->year = FullYear(value, word.size());
}

void ReadWord(std::string_view word, DateParts* parts)
{
    if (AllDigits(word)) {
        ReadNumber(word, parts);
        return;
    }
    if (IsDigit(word[0])) {
        if (ReadClock(word, parts) || ReadGluedDate(word, parts))
            return;
    }
    if (ReadZoneOffset(word, parts))
        return;
    if (word.back() == '.')
        word.remove_suffix(1);
    if (const int month = NameIndex(word, kMonths); month >= 0 && parts->month == 0) {
        parts->month = month + 1;
        return;
    }
    // "GMT+0100" names the zone and its offset; the offset counts.
    const std::string_view name = word.substr(0, word.find_first_of("+-"));
    if (const std::optional<int> zone = ZoneMinutes(name); zone && !parts->hasZone && parts->hour >= 0) {
        parts->zone = *zone;
        parts->hasZone = true;
        if (name.size() < word.size())
            ReadZoneOffset(word.substr(name.size()), parts);
        return;
    }
    if ((word == "PM" || word == "pm") && parts->hour >= 1 && parts->hour < 12)
        parts->hour += 12;
    if ((word == "AM" || word == "am") && parts->hour == 12)
        parts->hour = 0;
}

bool IsLeapYear(int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

bool IsDay(const DateParts& parts)
{
    constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (parts.month < 1 || parts.month > 12 || parts.day < 1)
        return false;
    const int days = kDays[static_cast<size_t>(parts.month - 1)] + (parts.month == 2 && IsLeapYear(parts.year));
    return parts.day <= days;
}

// Days since 1970-01-01 of a day of the Gregorian calendar.
int64_t DayNumber(int year, int month, int day)
{
    const int64_t y = month <= 2 ? year - 1 : year;
    const int64_t dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    return y * 365 + y / 4 - y / 100 + y / 400 + dayOfYear - 719468;
}

std::optional<int64_t> SecondsOf(const DateParts& parts)
{
    if (parts.bad || parts.year < kFirstYear || parts.year > kLastYear || !IsDay(parts))
        return std::nullopt;
    if (parts.hour < 0 || parts.hour > 23 || parts.minute > 59 || parts.second > 60)
        return std::nullopt;
    const int64_t minutes = int64_t{60} * parts.hour + parts.minute - parts.zone;
    const int64_t seconds = DayNumber(parts.year, parts.month, parts.day) * 86400 + minutes * 60 + parts.second;
    return seconds;
}

}  // namespace

std::optional<int> ZoneMinutes(std::string_view name)
{
    const std::string lower = Lower(name);
    for (const ZoneRow& row : kZones) {
        if (lower == row.name)
            return row.minutes;
    }
    return std::nullopt;
}

std::optional<int64_t> ReadMailDate(std::string_view text)
{
    DateParts parts;
    for (const std::string_view word : Words(text.substr(0, 200)))
        ReadWord(word, &parts);
    return SecondsOf(parts);
}

std::optional<int64_t> ReadFromLine(std::string_view line)
{
    if (!line.starts_with("From ") || line.size() > 1000)
        return std::nullopt;
    // The sender may hold spaces, so the date is looked for from its weekday on, from the right.
    const std::vector<std::string_view> words = Words(line.substr(5));
    for (size_t i = words.size(); i-- > 1;) {
        const std::string_view word = words[i];
        if (word.size() == 3 && NameIndex(word, kWeekdays) >= 0) {
            const auto offset = static_cast<size_t>(word.data() - line.data());
            return ReadMailDate(line.substr(offset));
        }
    }
    return std::nullopt;
}

}  // namespace pavex
