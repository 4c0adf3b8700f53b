// client/import/source_walk.h: the files behind a source: a file, a Maildir, or a folder of them.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "client/import/source_reader.h"

namespace pavex {

// What a Maildir file name says after ":2," (or ";2," and "!2,", where a colon is not allowed).
struct MaildirFlags {
    bool seen = false;
    bool draft = false;
    bool trashed = false;
};
MaildirFlags ReadMaildirFlags(std::string_view fileName);

struct WalkHandler {
    // False ends the walk.  Empty: no file is opened.
    std::function<bool(const SourceFile& file)> file;
    // A file or folder that cannot be read: entries may be missing that are still there.
    std::function<void(const std::string& path, const std::string& reason)> unreadable;
    // A folder, before what lies in it; false ends the walk.  May be empty.
    //   entered  false for one that is left out only because it is no Maildir (yet).
    std::function<bool(const std::string& path, bool entered)> folder = {};
};

// Visits the files of a source in the order of their names.
//  - A folder with "cur" or "new" in it is a Maildir: the files of both are messages, "tmp" is not looked at,
//    and its other folders (".Work" and so on) are walked like any folder.  A message without the flag S, and
//    every one in "new", is unread; one with D is a draft; one with T was deleted by its reader, who only has
//    not purged it yet.  The same when "cur", "new" or a file in them is named itself.
//  - Names that begin with a dot are no files of a source (keepers and control files of mail programs), nor are
//    the control files that are known by name, nor empty files in a folder unless named as what cannot be empty.
//  - Symbolic links are followed; each folder is entered once, whatever links lead to it.
// Returns false when the handler ended the walk.
bool WalkSource(const std::string& path, const WalkHandler& handler);
// Visits these files of a source alone, as the walk would, whose paths they have.  Those that are gone, and those that
// the walk would pass over by their names, are passed over.
bool WalkFiles(const std::string& source, const std::vector<std::string>& files, const WalkHandler& handler);

// False for the names of files that the walk passes over in a folder.
bool IsSourceName(std::string_view name);
// True for a file of a Maildir, which is one message for ever, by its path as the walk of the source gives it.
bool IsMaildirFile(const std::string& source, const std::string& path);

}  // namespace pavex
