// client/search/metafile.h: metafiles read back: the texts of one, for the piece of a note that a result shows,
// and what is wrong with one.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "client/search/kinds.h"

namespace pavex {

// The texts a note is found by, UTF-8: its body first, then the other properties but title, people and URLs,
// which results show by themselves.  None when the file is gone or is no metafile.
std::optional<std::vector<std::string>> ReadMetafileTexts(const std::string& path);

struct MetafileCheck {
    std::string damage;  // in words that follow the file's name and a colon; empty: none
    // When the note was last modified, as the file has it, seconds since 1970.  None for kinds that do not say.
    std::optional<int64_t> modified;
};
// Whether the file is a whole metafile of this kind for the note of this URL.  A symbolic link is none.
MetafileCheck CheckMetafile(const std::string& path, const SearchKind& kind, const std::string& url);

}  // namespace pavex
