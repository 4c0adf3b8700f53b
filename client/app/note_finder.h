// client/app/note_finder.h: from a link to the note it leads to.
#pragma once

#include <memory>
#include <string>

#include "client/store/database.h"

namespace pavex {

// The database that has the note, among those that are indexed and those in the data directory, and the note
// itself, unsealed.  Null, with *error, when no database has the link's replica id, or none of these the note; it then
// names what could not be looked into, folders or databases.
std::unique_ptr<Database> FindNote(const NOTELINK& link, Note* note, std::string* error);

}  // namespace pavex
