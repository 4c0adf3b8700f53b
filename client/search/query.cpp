// client/search/query.cpp: from what the user asks for to the search engine's query language.
#include "client/search/query.h"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

#include "client/search/signs.h"

namespace pavex {

namespace {

constexpr size_t kStampDigits = 14;
constexpr int64_t kFirstMoment = -62167219200;  // 0000-01-01T00:00:00Z
constexpr int64_t kLastMoment = 253402300799;   // 9999-12-31T23:59:59Z

// In lower case, since the engine takes a capital as a wish for the very word; what is a sign of the query
// language even between quotes becomes a blank, as do control characters.  Numbers stand alone, as they do in the
// index.
icu::UnicodeString Plain(std::string_view word)
{
    icu::UnicodeString text = icu::UnicodeString::fromUTF8({word.data(), static_cast<int32_t>(word.size())});
    text.toLower(icu::Locale::getRoot());
    icu::UnicodeString plain;
    UChar32 last = ' ';
    for (int32_t at = 0; at < text.length(); at = text.moveIndex32(at, 1)) {
        const UChar32 c = text.char32At(at);
        if (IsShaping(c))
            continue;
        const bool isSign = c == '"' || c == '\\' || c == '*' || c == '?' || c == '[' || c == ']';
        if (c >= '0' && c <= '9' && SwallowsDigits(last))
            plain.append(UChar32{' '});
        last = isSign || IsSeparator(c) ? UChar32{' '} : c;
        plain.append(last);
    }
    return plain.trim();
}

// Whether the engine would find a term in it; punctuation alone is none.
bool HasTerm(const icu::UnicodeString& text)
{
    for (int32_t at = 0; at < text.length(); at = text.moveIndex32(at, 1))
        if (const UChar32 c = text.char32At(at); u_isalnum(c) || c > 0xFFFF || u_charType(c) == U_OTHER_SYMBOL)
            return true;
    return false;
}

// Whether the engine would take it for one term, of which it can have the beginning.  Of paired characters it finds any
// part without an asterisk.
bool IsOneWord(const icu::UnicodeString& text)
{
    for (int32_t at = 0; at < text.length(); at = text.moveIndex32(at, 1))
        if (const UChar32 c = text.char32At(at); !u_isalnum(c) || IsPaired(c))
            return false;
    return true;
}

// Whether the text before a blank ends with one of these that has no other to be paired with.  Among words that are to
// stand together the engine would pass over it.
bool EndsUnpaired(const icu::UnicodeString& text, int32_t blank)
{
    bool isUnpaired = false;
    for (int32_t at = blank; at > 0 && IsPaired(text.char32At(text.moveIndex32(at, -1))); at = text.moveIndex32(at, -1))
        isUnpaired = !isUnpaired;
    return isUnpaired;
}

// The parts that the engine is to look for, each as it stands.
std::vector<icu::UnicodeString> Parts(const icu::UnicodeString& text)
{
    std::vector<icu::UnicodeString> parts;
    int32_t begin = 0;
    for (int32_t blank = text.indexOf(u' '); blank >= 0; blank = text.indexOf(u' ', blank + 1)) {
        if (!EndsUnpaired(text, blank))
            continue;
        parts.push_back(text.tempSubStringBetween(begin, blank));
        begin = blank + 1;
    }
    parts.push_back(text.tempSubString(begin));
    return parts;
}

std::string Quoted(const icu::UnicodeString& part)
{
    std::string text;
    part.toUTF8String(text);
    return "\"" + text + (part.indexOf(u' ') >= 0 ? "\"l" : "\"");
}

void Append(const std::string& clause, std::string* query)
{
    *query += (query->empty() ? "" : " ") + clause;
}

// field: with its colon; empty: any.
void AppendWord(const std::string& field, std::string_view word, std::string* query)
{
    const icu::UnicodeString plain = Plain(word);
    if (word.ends_with('*') && HasTerm(plain) && IsOneWord(plain)) {
        std::string text;
        Append(field + plain.toUTF8String(text) + "*", query);
        return;
    }
    for (icu::UnicodeString& part : Parts(plain))
        if (HasTerm(part.trim()))
            Append(field + Quoted(part), query);
}

void AppendWordOfUser(const std::string& word, const std::set<std::string>& fields, std::string* query)
{
    const size_t colon = word.find(':');
    std::string field = word.substr(0, colon);
    std::ranges::transform(field, field.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; });
    if (colon != word.npos && fields.contains(field))
        AppendWord(field + ":", std::string_view(word).substr(colon + 1), query);
    else
        AppendWord({}, word, query);
}

void AppendFrom(const std::string& from, std::string* query)
{
    for (size_t at = 0; at < from.size();) {
        const size_t end = std::min(from.find(' ', at), from.size());
        AppendWord("author:", std::string_view(from).substr(at, end - at), query);
        at = end + 1;
    }
}

}  // namespace

std::string BuildQuery(const SearchRequest& request, const std::set<std::string>& fields)
{
    std::string query;
    for (const std::string& word : request.words)
        AppendWordOfUser(word, fields, &query);
    if (query.empty())
        return query;
    AppendFrom(request.from, &query);
    if (request.kind != nullptr)
        Append(std::string("mime:") + request.kind->mediaType, &query);
    if (request.after || request.before)
        Append("pavexdate:" + (request.after ? StampFromUnix(*request.after) : "") + ".." +
                   (request.before ? StampFromUnix(*request.before - 1) : ""),
               &query);
    return query;
}

bool HasNoTime(const SearchRequest& request)
{
    const int64_t first = request.after.value_or(kFirstMoment);
    const int64_t end = request.before.value_or(kLastMoment + 1);
    return first >= end || end <= kFirstMoment || first > kLastMoment;
}

std::string StemmingLanguage(const std::vector<std::string>& languages)
{
    struct LanguageRow {
        std::string_view tag;
        const char* name;
    };
    // those that the index has word forms of (recoll.conf)
    constexpr LanguageRow kLanguages[] = {{"en", "english"}, {"de", "german"}, {"es", "spanish"}, {"fr", "french"}};
    const std::string tag = languages.empty() ? "en" : languages.front();
    for (const LanguageRow& row : kLanguages)
        if (tag.substr(0, tag.find_first_of("_-.@")) == row.tag)
            return row.name;
    return {};
}

std::string StampFromUnix(int64_t seconds)
{
    const std::time_t time = std::clamp(seconds, kFirstMoment, kLastMoment);
    std::tm parts{};
    std::array<char, 32> stamp{};
    if (gmtime_r(&time, &parts) == nullptr)
        return {};  // cannot be: the year is one of four digits
    (void)std::snprintf(stamp.data(), stamp.size(), "%04d%02d%02d%02d%02d%02d", parts.tm_year + 1900, parts.tm_mon + 1,
                        parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
    return stamp.data();
}

std::optional<int64_t> UnixFromStamp(const std::string& stamp)
{
    if (stamp.size() != kStampDigits || stamp.find_first_not_of("0123456789") != stamp.npos)
        return std::nullopt;
    const auto number = [&stamp](size_t at, size_t digits) { return std::stoi(stamp.substr(at, digits)); };
    std::tm parts{};
    parts.tm_year = number(0, 4) - 1900;
    parts.tm_mon = number(4, 2) - 1;
    parts.tm_mday = number(6, 2);
    parts.tm_hour = number(8, 2);
    parts.tm_min = number(10, 2);
    parts.tm_sec = number(12, 2);
    return timegm(&parts);
}

}  // namespace pavex
