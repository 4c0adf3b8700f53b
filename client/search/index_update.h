// client/search/index_update.h: the search engine's index made anew.
#pragma once

#include <string>

#include "client/search/configuration.h"
#include "client/store/descriptor.h"

namespace pavex {

// Throws a damaged index away, with all else in its folder, and builds it of the metafiles.
//   lock  from LockIndex, for changing the index.
// False, with *error naming the log, when that cannot be done.
bool RebuildIndex(const SearchFolders& folders, const Descriptor& lock, std::string* error);

}  // namespace pavex
