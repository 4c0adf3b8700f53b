// client/app/last_search.cpp: the results of the last search.
#include "client/app/last_search.h"

#include <filesystem>
#include <fstream>

#include "client/store/descriptor.h"
#include "client/store/host.h"

namespace pavex {

namespace {

std::string LastSearchPath()
{
    return (std::filesystem::path(CurrentPlaces().log).parent_path() / "last-search").string();
}

}  // namespace

bool KeepLastSearch(const std::vector<std::string>& urls)
{
    std::string lines;
    for (const std::string& url : urls)
        lines += url + "\n";
    return ReplaceFile(LastSearchPath(), lines);
}

std::optional<std::string> UrlOfLastSearch(size_t number)
{
    std::ifstream file(LastSearchPath());
    std::string url;
    for (size_t line = 0; line < number; ++line)
        if (!std::getline(file, url))
            return std::nullopt;
    return number == 0 ? std::nullopt : std::optional(url);
}

}  // namespace pavex
