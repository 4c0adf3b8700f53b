// client/search/metafile.h: the texts of a metafile, for the piece of a note that a result shows.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace pavex {

// The texts a note is found by, UTF-8: its body first, then the other properties but title, people and URLs,
// which results show by themselves.  None when the file is gone or is no metafile.
std::optional<std::vector<std::string>> ReadMetafileTexts(const std::string& path);

}  // namespace pavex
