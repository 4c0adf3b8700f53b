// client/import/importer.h: brings what other programs keep (mailboxes, message files) into databases as
// notes, again and again: an entry that was read before updates its note and is never doubled.
// One call of Import at a time in a process; the databases may be in use by other processes meanwhile.
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace pavex {

struct ImportOptions {
    enum class As { kMail, kDiscussion };

    std::string into;    // native path of the database; empty: the default one of each kind of source
    As as = As::kMail;   // the form of the notes: mail, or topics and responses of a discussion
    bool prune = false;  // delete notes of these sources whose entry is gone
    // Of the one source, a folder, these files alone: paths below its canonical path.  Nothing counts as gone then,
    // and entries of which an older content is held are passed over (ImportReport::passedOver).  Empty: all of it.
    std::vector<std::string> only;
    std::string dataDirectory;  // native path, where the default databases live
};

// An entry that did not come in, or (as a notice) not with all that it says.
struct RejectedEntry {
    std::string source;  // as the source was given
    std::string where;   // the file, and in a file of many messages "FILE:byte OFFSET"
    std::string reason;  // one line, no full stop
};

// What became of the entries.  added + updated + unchanged + rejected are the entries that were read;
// an entry that stands in two of the sources is counted where it stands, and is one note.
struct ImportReport {
    uint64_t added = 0;
    uint64_t updated = 0;
    uint64_t unchanged = 0;
    uint64_t removed = 0;
    // With ImportOptions::only: entries that the whole source must be read for.  They count as unchanged.
    uint64_t passedOver = 0;
    std::vector<RejectedEntry> rejected;
    std::vector<RejectedEntry> notices;  // of entries that were added or updated
    std::set<std::string> databases;     // native paths of those that the entries belong in
};

struct ImportProgress {
    std::string source;       // being read, as it was given
    uint64_t entries = 0;     // read so far, in all sources
    uint64_t bytes = 0;       // read so far of this source
    uint64_t totalBytes = 0;  // of this source; 0: not known
};
// Called now and then on the calling thread; false ends the import in order: what was read is kept.
using ImportProgressCallback = std::function<bool(const ImportProgress&)>;

// Reads every source (file or folder, native paths) into notes.
//   progress  may be empty.
//   report    replaced; says what was done also when the import fails half-way.
//   error     on failure one line: what, which file, why.
// Returns false when a source cannot be read at all, a database cannot be written, or the callback ended
// it; a bad entry among good ones is no failure, it stands in report->rejected.  The other sources are
// still read after an unreadable one.  Written are whole notes, some thousands a transaction.
bool Import(const std::vector<std::string>& sources, const ImportOptions& options,
            const ImportProgressCallback& progress, ImportReport* report, std::string* error);

}  // namespace pavex
