// client/app/search_report.h: what a search found, as users and programs read it.
#pragma once

#include <string>
#include <vector>

#include "client/search/search_index.h"

namespace pavex {

struct SearchResult {
    SearchHit hit;
    std::string snippet;  // a piece of the note, UTF-8 on one line, with a hit in it if the piece can have one
};

// The answer's notes that are still there: a note whose metafile went since the index was read is not.
std::vector<SearchResult> ReadResults(const SearchAnswer& answer);

// One JSON object a line: url, kind, title, date, people, snippet, and hits, the places of the words in the snippet:
// [begin, end], counted in Unicode characters.
void PrintResultsAsJson(const std::vector<SearchResult>& results, const std::vector<std::string>& terms);

// For people: numbered, the words in bold, or between asterisks where nothing can be bold.  On a terminal no line is
// wider than the screen; a URL that has no room on it is left out.
void PrintResults(const std::vector<SearchResult>& results, const std::vector<std::string>& terms);

}  // namespace pavex
