// client/app/search_folders.h: where the search engine's things are for the current home.
#pragma once

#include "client/search/configuration.h"

namespace pavex {

SearchFolders FoldersOfHome();

}  // namespace pavex
