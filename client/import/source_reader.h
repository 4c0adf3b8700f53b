// client/import/source_reader.h: the one interface behind which every source format is read.
// A format is a function that recognises its files by their first bytes, a function that hands out the
// entries of a file, and a row in the table of formats: nothing else in the importer knows formats.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "client/import/importer.h"
#include "client/import/thread_index.h"
#include "client/store/note.h"

namespace pavex {

// What an entry becomes, and with it the default database.
enum class EntryKind { kMail, kDiscussion, kPerson, kCalendar, kDocument, kHistory };

// How new a version of an entry is, for entries whose source counts or dates their versions.
struct Revision {
    uint32_t sequence = 0;  // counted up by its author at every change that matters
    std::string changed;    // "YYYYMMDDTHHMMSSZ"; empty: not known
};
// By the count, and where that is the same by the time if both have one.
bool IsOlder(const Revision& a, const Revision& b);

// A file of a source, as the formats see it.
struct SourceFile {
    enum class Place {
        kNamed,    // given by the user: taken for what it can be
        kFolder,   // found in a folder: taken for what it clearly is
        kMaildir,  // one message of a Maildir
    };
    std::string path;  // native
    Place place = Place::kNamed;
    uint64_t size = 0;           // bytes
    int64_t modified = 0;        // seconds since 1970
    std::string head;            // its first bytes, at most kHeadBytes
    std::optional<bool> unread;  // by the folder it lies in or its name
    bool draft = false;
    bool deleted = false;  // marked so, only waiting to be purged
};
constexpr size_t kHeadBytes = 4096;

// A form that notes of an import are written with: a design note beside them, which says how their window
// is titled.
struct FormDefinition {
    const char* name;
    const char* windowTitle;  // a formula
};

// One entry of a source, not yet read further than was needed to know it again.
struct SourceEntryFound {
    EntryKind kind = EntryKind::kMail;
    std::string identity;        // who it is: the same in every source and in every version
    std::string digest;          // what it says: equal digests make equal notes
    std::string where;           // for reports
    std::optional<bool> unread;  // nothing: the source does not say
    // With a revision there is one note an identity, and its newest version counts; of equally new ones that
    // of the last import.  Without, different contents of one identity are different notes.
    std::optional<Revision> revision;
    const FormDefinition* form = nullptr;  // that the database must hold with the note; of static duration
    std::string notice;                    // what was left out of the note, for the report; empty: nothing
    // Makes the items and times of the note (not its id); called at most once, before Found returns.  False with
    // *reason when the entry cannot be read after all.
    std::function<bool(Note* note, std::string* reason)> make;
};

// Takes what the readers find.
class EntryHandler {
public:
    virtual ~EntryHandler() = default;
    // The postings that this import has met.
    ThreadIndex& Threads() { return threads_; }
    // False: stop reading, the import is being ended.
    virtual bool Found(SourceEntryFound entry) = 0;
    // An entry that is none.
    virtual bool Rejected(const std::string& where, const std::string& reason) = 0;
    // A bad version of an entry that may have come in before: what is held of it stays.
    virtual bool RejectedVersion(EntryKind kind, const std::string& identity, const std::string& where,
                                 const std::string& reason) = 0;
    // A file that could not be read to its end: entries may be missing that are still there.
    virtual void Unreadable(const std::string& where, const std::string& reason) = 0;
    // bytes: read since the last call.
    virtual bool Progress(uint64_t bytes) = 0;

private:
    ThreadIndex threads_;
};

struct FormatRow {
    const char* name;
    bool (*recognises)(const SourceFile& file);
    // False: the handler wants to stop.
    bool (*read)(const SourceFile& file, const ImportOptions& options, EntryHandler& handler);
};

// The formats, in the order in which they are asked.
std::span<const FormatRow> Formats();
// True for a file whose name says that it is of one of the formats.
bool IsNamedAsSource(std::string_view path);
// False for a file whose name says that it is of a format in which nothing is no whole file: one without a byte is
// being written, or was damaged.
bool MayBeEmpty(std::string_view path);
// The first format that recognises the file; null when none does.
const FormatRow* FormatOf(const SourceFile& file);

}  // namespace pavex
