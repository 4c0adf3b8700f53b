// client/search/configuration.h: the search engine's settings for one home.
// They are written beside the index, so that the user's own search and other homes are left alone.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace pavex {

struct SearchFolders {
    std::string templates;  // the settings as they come with the program
    std::string metadata;   // metafiles
    std::string home;       // settings and index of this home
    // Opens a note in the search window: a program and its first arguments; its last will be the note's URL.
    std::vector<std::string> opener = {};
};

// The folder of metafiles below a caches folder: that of the older layout where there is one.
std::string MetadataFolder(const std::string& caches);

// Writes the settings where they are not what they should be; an index that was made by others is removed with
// them.  The search window's own settings, which no index depends on, come and go without it.  False, with *error
// saying what and why, when a file cannot be read or written.
bool WriteConfiguration(const SearchFolders& folders, std::string* error);

// Removes the folder of settings and index with all that is in it, and writes the settings.  False, with *error.
bool WriteConfigurationAnew(const SearchFolders& folders, std::string* error);

// The names a word may have before a colon, to be looked for in that field; aliases included.
std::set<std::string> ReadFieldNames(const SearchFolders& folders);

// Ends the text of a rendered note; not part of it.
constexpr char kTextMarker[] = " xqzTorvikLeadingMarkervqjx ";

}  // namespace pavex
