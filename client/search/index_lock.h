// client/search/index_lock.h: who may read or change the search engine's index of a home.
#pragma once

#include <functional>
#include <string>

#include "client/search/configuration.h"
#include "client/store/descriptor.h"

namespace pavex {

//   onWait  called when another process has the lock.
// Waits for the lock, which is held until the descriptor is closed: alone for changing the index, with others for
// reading it.  Makes the folders above the index, and the file, which for reading need only be there.  Not open, with
// *error, when that cannot be done.
Descriptor LockIndex(const SearchFolders& folders, bool isAlone, std::string* error,
                     const std::function<void()>& onWait = nullptr);

}  // namespace pavex
