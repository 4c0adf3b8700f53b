// client/watch/watch_list.h: the sources that are read in again by themselves: a list in the ini file.
// ImportSource1=PATH, and its options ImportSource1As, ImportSource1Into and ImportSource1Prune; the numbers are
// any, and tell one source from the next.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "client/import/importer.h"

namespace pavex {

struct WatchedSource {
    std::string path;  // native, absolute
    ImportOptions::As as = ImportOptions::As::kMail;
    std::string into = {};  // native path of a database, a relative one in the data directory; empty: the default ones
    bool prune = false;
    bool operator==(const WatchedSource&) const = default;
};

struct WatchListEntry {
    int number = 0;
    WatchedSource source;
};

struct WatchList {
    std::vector<WatchListEntry> entries;  // by their numbers
    std::vector<std::string> problems;    // entries that are left out: "FILE: VARIABLE=VALUE: REASON"
};

// The list as the ini file has it now.  Does not look whether the sources are there.
WatchList ReadWatchList();

// "mail" and "discussion".
const char* NameOf(ImportOptions::As as);
// The database that a source is read into: an absolute path; empty: the default ones.
std::string DatabaseOf(const WatchedSource& source);
// Why reading the source would write into the source itself, again and again; empty when it would not.
std::string WhyItChangesItself(const WatchedSource& source);
// True when the walk of the folder comes to the path: below it, with no hidden folder in between.  Symbolic links
// in either are followed.
bool IsReadWith(const std::string& folder, const std::string& path);

struct AddedSource {
    enum class Outcome { kAdded, kChanged, kUnchanged, kCovered, kFailed };
    Outcome outcome = Outcome::kFailed;
    std::string covering;              // the source that it is read with already (kCovered)
    std::vector<std::string> covered;  // sources that are read with it from now on, and by themselves (kAdded)
};
// Puts a source on the list.  One that stands there already takes the new options; one that is read with another,
// with the same options, is not put there.  kFailed: the ini file could not be written.
AddedSource AddToWatchList(const WatchedSource& source);

enum class RemovedSource { kRemoved, kNotListed, kFailed };
// Takes a source off the list: one of this path, or of one that leads to the same place.
RemovedSource RemoveFromWatchList(const std::string& path);

}  // namespace pavex
