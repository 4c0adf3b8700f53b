// client/watch/complaints.h: what is said of a source that is read again and again: each thing once.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "client/import/importer.h"

namespace pavex {

class Complaints {
public:
    // What is new of what a reading met, as lines for the log.
    //   all    the whole source was read: what it no longer met is forgotten, and told again when it comes back.
    //   error  why the reading failed; empty when it did not.
    std::vector<std::string> TakeNew(const ImportReport& report, const std::string& error, bool all);
    // True while there is anything that could not be read.
    bool HasAny() const { return !known_.empty(); }

private:
    std::unordered_set<size_t> known_;  // hashes of lines: a folder may hold very many files that are no source
};

}  // namespace pavex
