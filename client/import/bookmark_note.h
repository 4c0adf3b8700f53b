// client/import/bookmark_note.h: a bookmark as an entry of the history, or as a note with an address.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "client/import/source_reader.h"

namespace pavex {

// A note lists so many; further ones are passed over.
constexpr size_t kMostCategories = 100;

struct Bookmark {
    std::string address;
    std::string title;
    std::string description;
    std::vector<std::string> categories;
    int64_t added = 0;    // seconds since 1970; 0: not known
    int64_t changed = 0;  // the same
};

// By which an import knows the bookmark of an address again, and pavex open the entry of a note: one note has one
// entry, wherever it comes from.  Addresses of notes as UrlOfNote writes them.
std::string BookmarkIdentity(const std::string& address);

// Fills kind, identity, digest, revision and the maker of the note.  False with *reason when it leads to a
// note by an address that is none.
bool MakeBookmarkEntry(const Bookmark& bookmark, SourceEntryFound* entry, std::string* reason);

}  // namespace pavex
