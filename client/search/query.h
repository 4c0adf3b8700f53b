// client/search/query.h: from what the user asks for to the search engine's query language.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "client/search/kinds.h"

namespace pavex {

struct SearchRequest {
    std::vector<std::string> words;  // UTF-8; one with blanks is looked for as it stands
    const SearchKind* kind = nullptr;
    std::string from;
    std::optional<int64_t> after;   // seconds since 1970; notes of that moment are found
    std::optional<int64_t> before;  // the same; notes of that moment are not
};

// The query; empty when no word has anything that can be looked for.  fields: what may stand before a colon
// (ReadFieldNames); every other sign is text, and none has a meaning for the engine, but an asterisk at a
// word's end, which stands for any letters.
std::string BuildQuery(const SearchRequest& request, const std::set<std::string>& fields);

// True when no note can be of the time that is asked for: its end is not after its beginning, or it ends before the
// first year, or begins after the last one, that a note's date can have (0000, 9999).  BuildQuery is not to be asked
// then: the engine takes an end before the beginning for the beginning.
bool HasNoTime(const SearchRequest& request);

// The search engine's name for the language whose word forms count as one word; empty: every form is a word of its
// own.  languages: the user's, best first ("de_AT", "ja"); none means English.
std::string StemmingLanguage(const std::vector<std::string>& languages);

// "20070305140000": GMT, as the notes' dates are held in the index; the first or last moment that has this form for
// times before or after all of those.
std::string StampFromUnix(int64_t seconds);
std::optional<int64_t> UnixFromStamp(const std::string& stamp);

}  // namespace pavex
