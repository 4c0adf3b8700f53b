// client/search/index_damage.h: whether the search engine fails because of its index, which can be built anew.
#pragma once

#include <string>

#include "client/search/configuration.h"
#include "client/search/process.h"

namespace pavex {

// The logs of the engine, native paths.
std::string IndexingLog(const SearchFolders& folders);
std::string QueryLog(const SearchFolders& folders);

// What kept a program of the engine that failed from its work and would keep it from building the index anew, too:
// it was stopped, the disk is full, the folder cannot be written, another program writes there.  In words that follow
// a colon; empty when there is no such thing, so that the index itself must be to blame.
//   log  native path of the log that the program wrote.
std::string FindObstacle(const SearchFolders& folders, const ProcessResult& result, const std::string& log);

}  // namespace pavex
