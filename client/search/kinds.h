// client/search/kinds.h: the kinds of note as the search knows them.
#pragma once

#include <array>
#include <string_view>

namespace pavex {

struct SearchKind {
    const char* name;       // on the command line and in results
    const char* mediaType;  // in the search engine's configuration
};
constexpr std::array<SearchKind, 8> kSearchKinds = {{
    {"mail", "application/x-pavex-mail"},
    {"calendar", "application/x-pavex-calendar"},
    {"task", "application/x-pavex-task"},
    {"contact", "application/x-pavex-contact"},
    {"journal", "application/x-pavex-journal"},
    {"discussion", "application/x-pavex-discussion"},
    {"history", "application/x-pavex-history"},
    {"note", "application/x-pavex-note"},
}};

// Null for what is no kind.
constexpr const SearchKind* FindKindByName(std::string_view name)
{
    for (const SearchKind& kind : kSearchKinds)
        if (name == kind.name)
            return &kind;
    return nullptr;
}
constexpr const SearchKind* FindKindByMediaType(std::string_view mediaType)
{
    for (const SearchKind& kind : kSearchKinds)
        if (mediaType == kind.mediaType)
            return &kind;
    return nullptr;
}

}  // namespace pavex
