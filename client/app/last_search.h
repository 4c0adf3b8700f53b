// client/app/last_search.h: the results of the last search, so that they can be opened by their numbers.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace pavex {

// Keeps the URLs, in the order of their numbers, in place of those of the search before.
bool KeepLastSearch(const std::vector<std::string>& urls);
// The URL of a number, the first being 1; none when there is no such result.
std::optional<std::string> UrlOfLastSearch(size_t number);

}  // namespace pavex
