// client/app/note_finder.h: from a link to the note it leads to.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "client/store/database.h"

namespace pavex {

// The databases that may have a note: those that are indexed, then those in the data directory.
struct KnownDatabases {
    std::vector<std::string> files;   // native paths
    std::vector<std::string> unread;  // "PATH: why", folders and databases that could not be looked into
};
KnownDatabases FindKnownDatabases();
// Whether the database has this replica id.
bool IsReplica(const Database& database, const TIMEDATE& id);
// "; not looked into: ...", for the end of a message; empty when everything could be.
std::string NotLookedInto(const KnownDatabases& known);

// The database that has the note, among those that are indexed and those in the data directory, and the note
// itself, unsealed.  Null, with *error, when no database has the link's replica id, or none of these the note; it then
// names what could not be looked into, folders or databases.
std::unique_ptr<Database> FindNote(const NOTELINK& link, Note* note, std::string* error);

}  // namespace pavex
