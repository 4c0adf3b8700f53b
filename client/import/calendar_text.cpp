// client/import/calendar_text.cpp: what calendars get wrong, put right before they are parsed.
#include "client/import/calendar_text.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "client/import/charset_text.h"
#include "client/import/content_lines.h"
#include "client/import/words.h"

namespace pavex {
namespace {

// Of a repetition rule; with any other part the whole rule would be refused.
constexpr std::string_view kRuleParts[] = {"FREQ",     "UNTIL", "COUNT",      "INTERVAL",  "BYSECOND", "BYMINUTE",
                                           "BYHOUR",   "BYDAY", "BYMONTHDAY", "BYYEARDAY", "BYWEEKNO", "BYMONTH",
                                           "BYSETPOS", "WKST",  "RSCALE",     "SKIP"};

void AddLine(std::string_view line, std::string* text)
{
    *text += line;
    *text += "\r\n";
}

// Value of a CHARSET parameter; empty: none.
std::string CharsetOf(std::string_view line)
{
    constexpr std::string_view kName = ";CHARSET=";
    const std::string parameters = UpperWord(line.substr(0, ContentValue(line)));
    const size_t at = parameters.find(kName);
    if (at == std::string::npos)
        return {};
    const size_t from = at + kName.size();
    return parameters.substr(from, parameters.find_first_of(";:", from) - from);
}

std::string Escaped(std::string_view text)
{
    std::string escaped;
    for (const char c : text) {
        if (c == '\n') {
            escaped += "\\n";
        } else {
            if (c == '\\' || c == ',' || c == ';')
                escaped += '\\';
            escaped += c;
        }
    }
    return escaped;
}

// The last one may have been cut in two.
std::string WithoutLastCharacter(std::string_view bytes)
{
    return std::string(Utf8Prefix(bytes, bytes.empty() ? 0 : bytes.size() - 1));
}

void AddQuotedPrintable(std::string_view line, bool shortened, std::string* text)
{
    std::string_view value = line.substr(ContentValue(line));
    const size_t escape = value.rfind('=');
    if (shortened && escape != value.npos && escape + 3 > value.size())
        value = value.substr(0, escape);
    std::string bytes = FromQuotedPrintable(value);
    if (shortened)
        bytes = WithoutLastCharacter(bytes);
    const std::string decoded = Utf8FromBytes(bytes, CharsetOf(line));
    AddLine(ContentName(line) + ":" + Escaped(CleanText(decoded)), text);
}

// A line for each category: the parser does not tell a comma in one from a comma between two.
void AddCategories(std::string_view line, std::string* text)
{
    std::string_view rest = line.substr(ContentValue(line));
    while (!rest.empty()) {
        size_t end = 0;
        while (end < rest.size() && rest[end] != ',')
            end += rest[end] == '\\' && end + 1 < rest.size() ? 2 : 1;
        const std::string_view one = rest.substr(0, end);
        if (one.find_first_not_of(" \t") != one.npos)
            AddLine("CATEGORIES:" + std::string(one), text);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}

void AddRule(std::string_view line, std::string* text)
{
    const size_t value = ContentValue(line);
    std::string rule(line.substr(0, value));
    std::string_view rest = line.substr(value);
    if (rest.empty())
        return;
    bool first = true;
    while (!rest.empty()) {
        const std::string_view part = rest.substr(0, rest.find(';'));
        rest.remove_prefix(std::min(part.size() + 1, rest.size()));
        const std::string name = ContentName(part.substr(0, part.find('=')));
        if (std::find(std::begin(kRuleParts), std::end(kRuleParts), name) == std::end(kRuleParts))
            continue;
        rule += (first ? "" : ";") + std::string(part);
        first = false;
    }
    AddLine(rule, text);
}

// Components inside are left out, alarms for instance; those of a zone are what it is made of.
class Nesting {
public:
    // Whether the line is part of the text.
    bool Takes(std::string_view name, std::string_view value)
    {
        if (name == "BEGIN") {
            open_.push_back(ContentName(value));
            return Inside();
        }
        if (name != "END")
            return Inside();
        // What is inside and was not ended ends here too.
        const auto begun = std::find(open_.begin(), open_.end(), ContentName(value));
        if (begun == open_.end())
            return false;
        open_.erase(begun + 1, open_.end());
        const bool inside = Inside();
        open_.pop_back();
        return inside;
    }

private:
    bool Inside() const
    {
        return open_.size() == 1 ||
               (open_.size() == 2 && open_[0] == "VTIMEZONE" && (open_[1] == "STANDARD" || open_[1] == "DAYLIGHT"));
    }

    std::vector<std::string> open_;
};

void AddContentLine(const std::string& name, const std::string& raw, std::string* text)
{
    const std::string utf8 = Utf8FromBytes(raw, CharsetOf(raw));
    if (name == "CATEGORIES")
        AddCategories(utf8, text);
    else if (name == "RRULE" || name == "EXRULE")
        AddRule(utf8, text);
    else
        AddLine(utf8, text);
}

}  // namespace

std::string CalendarText(int descriptor, uint64_t start, uint64_t end, bool* shortened)
{
    std::string text;
    Nesting nesting;
    ContentLines lines(descriptor, start, end);
    for (ContentLine line; lines.Next(&line);) {
        std::string& raw = line.text;
        std::replace(raw.begin(), raw.end(), '\0', ' ');
        raw.resize(raw.find_last_not_of(" \t\r") + 1);
        const size_t value = ContentValue(raw);
        const std::string name = ContentName(raw);
        if (value == std::string::npos || !nesting.Takes(name, std::string_view(raw).substr(value)))
            continue;
        if (name == "ATTACH")
            continue;
        *shortened = *shortened || line.shortened;
        if (line.shortened)
            raw = WithoutLastCharacter(raw);
        if (IsQuotedPrintable(raw))
            AddQuotedPrintable(raw, line.shortened, &text);
        else
            AddContentLine(name, raw, &text);
    }
    return text;
}

}  // namespace pavex
