// client/search/kinds.h: the kinds of note as the search knows them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pavex {

struct SearchKind {
    const char* name;       // on the command line and in results
    const char* mediaType;  // in the search engine's configuration
    const char* extension;  // of its metafiles
    const char* timeKey;    // the date that each of its metafiles has
};
inline constexpr std::array<SearchKind, 8> kSearchKinds = {{
    {"mail", "application/x-pavex-mail", "vPavexMessage", "received"},
    {"calendar", "application/x-pavex-calendar", "vPavexCalendar", "last_modified_time"},
    {"task", "application/x-pavex-task", "vPavexTask", "last_modified_time"},
    {"contact", "application/x-pavex-contact", "vPavexContact", "last_modified_time"},
    {"journal", "application/x-pavex-journal", "vPavexJournal", "last_modified_time"},
    {"discussion", "application/x-pavex-discussion", "vPavexDiscussion", "message_time"},
    {"history", "application/x-pavex-history", "vPavexHistory", "last_modified_time"},
    {"note", "application/x-pavex-note", "vPavexNote", "last_modified_time"},
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
constexpr const SearchKind* FindKindByExtension(std::string_view extension)
{
    for (const SearchKind& kind : kSearchKinds)
        if (extension == kind.extension)
            return &kind;
    return nullptr;
}

// The place of a kind of the table in sets of kinds, a bit; zero for null.
constexpr uint8_t BitOf(const SearchKind* kind)
{
    for (size_t i = 0; kind != nullptr && i < kSearchKinds.size(); ++i)
        if (std::string_view(kSearchKinds[i].name) == kind->name)
            return static_cast<uint8_t>(1U << i);
    return 0;
}

}  // namespace pavex
