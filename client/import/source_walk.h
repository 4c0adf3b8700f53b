// client/import/source_walk.h: the files behind a source: a file, a Maildir, or a folder of them.
#pragma once

#include <functional>
#include <string>

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
    // False ends the walk.
    std::function<bool(const SourceFile& file)> file;
    // A file or folder that cannot be read: entries may be missing that are still there.
    std::function<void(const std::string& path, const std::string& reason)> unreadable;
};

// Visits the files of a source in the order of their names.
//  - A folder with "cur" or "new" in it is a Maildir: the files of both are messages, "tmp" is not looked at,
//    and its other folders (".Work" and so on) are walked like any folder.  A message without the flag S, and
//    every one in "new", is unread; one with D is a draft; one with T was deleted by its reader, who only has
//    not purged it yet.  The same when "cur", "new" or a file in them is named itself.
//  - Names that begin with a dot are no files of a source (keepers and control files of mail programs), nor are
//    the control files that are known by name, nor empty files in a folder unless named as a mailbox or message.
//  - Symbolic links are followed; each folder is entered once, whatever links lead to it.
// Returns false when the handler ended the walk.
bool WalkSource(const std::string& path, const WalkHandler& handler);

}  // namespace pavex
