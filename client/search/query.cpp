// client/search/query.cpp: from what the user asks for to the search engine's query language.
#include "client/search/query.h"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

namespace pavex {

namespace {

constexpr size_t kStampDigits = 14;
constexpr int64_t kFirstMoment = -62167219200;  // 0000-01-01T00:00:00Z
constexpr int64_t kLastMoment = 253402300799;   // 9999-12-31T23:59:59Z

// In lower case, since the engine takes a capital as a wish for the very word; what is a sign of the query
// language even between quotes becomes a blank, as do control characters.
icu::UnicodeString Plain(std::string_view word)
{
    icu::UnicodeString text = icu::UnicodeString::fromUTF8({word.data(), static_cast<int32_t>(word.size())});
    text.toLower(icu::Locale::getRoot());
    icu::UnicodeString plain;
    for (int32_t at = 0; at < text.length(); at = text.moveIndex32(at, 1)) {
        const UChar32 c = text.char32At(at);
        const bool isSign = c == '"' || c == '\\' || c == '*' || c == '?' || c == '[' || c == ']';
        plain.append(isSign || u_iscntrl(c) || u_isUWhiteSpace(c) ? UChar32{' '} : c);
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

bool IsOneWord(const icu::UnicodeString& text)
{
    for (int32_t at = 0; at < text.length(); at = text.moveIndex32(at, 1))
        if (!u_isalnum(text.char32At(at)))
            return false;
    return true;
}

// Empty when there is nothing to look for.
std::string Clause(std::string_view word)
{
    const icu::UnicodeString plain = Plain(word);
    if (!HasTerm(plain))
        return {};
    std::string text;
    plain.toUTF8String(text);
    if (word.ends_with('*') && IsOneWord(plain))
        return text + "*";
    const bool isPhrase = plain.indexOf(u' ') >= 0;
    return "\"" + text + (isPhrase ? "\"l" : "\"");
}

std::string InField(const std::string& field, std::string_view word)
{
    const std::string clause = Clause(word);
    return clause.empty() ? clause : field + ":" + clause;
}

std::string WordClause(const std::string& word, const std::set<std::string>& fields)
{
    const size_t colon = word.find(':');
    std::string field = word.substr(0, colon);
    std::ranges::transform(field, field.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; });
    return colon != word.npos && fields.contains(field) ? InField(field, std::string_view(word).substr(colon + 1))
                                                        : Clause(word);
}

void Append(const std::string& clause, std::string* query)
{
    if (!clause.empty())
        *query += (query->empty() ? "" : " ") + clause;
}

void AppendFrom(const std::string& from, std::string* query)
{
    for (size_t at = 0; at < from.size();) {
        const size_t end = std::min(from.find(' ', at), from.size());
        Append(InField("author", std::string_view(from).substr(at, end - at)), query);
        at = end + 1;
    }
}

}  // namespace

std::string BuildQuery(const SearchRequest& request, const std::set<std::string>& fields)
{
    std::string query;
    for (const std::string& word : request.words)
        Append(WordClause(word, fields), &query);
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
