// client/app/unindexed_targets.h: watched sources that are read into databases that nobody indexes.
#pragma once

#include <string>
#include <vector>

#include "client/watch/read_records.h"
#include "client/watch/watch_list.h"

namespace pavex {

// For each database that is there, that sources of the list are read into, and that is not among the indexed ones: one
// line with what to do.  Of a source that names no database, those are known that its readings wrote into.
std::vector<std::string> TellUnindexedTargets(const WatchList& list, const ReadRecords& records);

}  // namespace pavex
