// client/store/database.h: one open database, for the client's own C++ code (importers, commands,
// tests).  The C calls of platform/store.h work on the same class.
// A Database belongs to one thread at a time; any number of them, in any number of processes, may have
// one file open.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "client/store/note.h"
#include "platform/store.h"

namespace pavex {

class Engine;
class IdTable;
struct DatabaseInfo;
struct NoteRow;

struct NoteSummary {
    uint32_t id;
    UNID unid;
    TIMEDATE modified;
    uint16_t noteClass;
};

// How an importer finds the note it made from a source entry before.
struct SourceEntry {
    std::string key;     // stable identity of the entry, unique in the database
    std::string source;  // which source it came from (a canonical path): what --prune looks through
    std::string digest;  // hash of the entry's content: equal means unchanged
    uint32_t noteId = 0;
};

class Database {
public:
    // path: native (UTF-8) file path.  The status says why not (259, 513, 514, 515, 516, 519, 517);
    // *database is then empty.  Create makes a new file (folders are not made) and fails on an
    // existing one (519); OpenOrCreate does whichever fits.
    static STATUS Open(const std::string& path, std::unique_ptr<Database>* database);
    static STATUS Create(const std::string& path, std::string_view titleUtf8, std::unique_ptr<Database>* database);
    static STATUS OpenOrCreate(const std::string& path, std::string_view titleUtf8,
                               std::unique_ptr<Database>* database);
    ~Database();

    const std::string& Path() const { return path_; }
    TIMEDATE ReplicaId() const { return replica_; }
    std::string Title() const;  // UTF-8; empty when it cannot be read
    STATUS SetTitle(std::string_view utf8);

    // A write transaction: one change stamp for all that is written in it.  Writes outside of one are a
    // transaction each.  Begin takes the write lock (515 when another process keeps it for 10 s).
    STATUS Begin();
    STATUS Commit();
    void Rollback();

    // Saves a note with all of its items; fills in id, unid, sequence and times where they are 0 (sequence
    // counts up).  An id of 0 with the unid of a note that is there, or was deleted, saves that note.
    // 549 or 551 for the id of no live note; 595 when a sealed note cannot be encrypted.
    STATUS Put(Note* note);
    // 549 for a deleted note (its identity filled in), 551 for none, 518 for one that is damaged.  Sealed
    // items are left out unless Unseal was called; 595 when the key is then missing or does not fit.
    STATUS Get(uint32_t id, Note* note);
    void Unseal(bool unseal = true) { unseal_ = unseal; }
    std::optional<uint32_t> FindUnid(const UNID& unid);  // a live note's
    STATUS Delete(uint32_t id);                          // leaves a stub
    // Gives a live note a new change stamp and leaves all else of it as it is, its modification time and
    // sequence too: whoever asks for what changed is told of it again.  549, 551 or 518.
    STATUS Touch(uint32_t id);
    // Calls back in id order, with any calls allowed in the callback; false from it ends the walk.  Notes
    // that are damaged beyond their identity are passed over.
    STATUS List(const std::function<bool(const NoteSummary&)>& callback);
    STATUS CountNotes(uint64_t* count);

    STATUS SetUnread(std::string_view userUtf8, uint32_t id, bool unread);
    STATUS IsUnread(std::string_view userUtf8, uint32_t id, bool* unread);

    STATUS FindSource(std::string_view key, std::optional<SourceEntry>* entry);
    STATUS PutSource(const SourceEntry& entry);
    STATUS DeleteSource(std::string_view key);
    // Those whose key is the identity, or the identity and "#" before anything else.
    STATUS SourcesOf(std::string_view identity, std::vector<SourceEntry>* entries);
    STATUS ListSources(std::string_view source, const std::function<bool(const SourceEntry&)>& callback);

    // What the C calls are made of.
    // Id, identity, and the stored items when withItems; 551 for no note, 0 for a stub.
    STATUS ReadRow(uint32_t id, bool withItems, NoteRow* row);
    STATUS ReadValue(uint32_t id, uint32_t position, std::string* value);
    // See VLTDbGetModifiedNoteTable.
    STATUS ModifiedNotes(uint16_t classMask, const TIMEDATE& since, TIMEDATE* until, IdTable* table);
    STATUS UnreadNotes(std::string_view userUtf8, IdTable* table);
    STATUS FindDesignNote(std::string_view titleUtf8, uint16_t noteClass, uint32_t* id);  // 593
    // Stamp of the last change of a document, and of anything else; either may be null.
    STATUS ChangeTimes(TIMEDATE* data, TIMEDATE* design);

    Engine& engine() { return *engine_; }

private:
    Database(std::string path, std::unique_ptr<Engine> engine);
    STATUS Write(const std::function<STATUS()>& work);
    STATUS TakeStamp(uint16_t noteClass);
    STATUS Identify(Note* note, NoteRow* row);
    STATUS SaveNote(Note* note);
    STATUS SaveStub(uint32_t id);
    STATUS SaveStamp(uint32_t id);
    // Reads the row of a note that is not deleted, and gives it a change stamp of its own; nothing is written yet.
    STATUS StampRow(uint32_t id, NoteRow* row);

    std::string path_;
    std::unique_ptr<Engine> engine_;
    std::unique_ptr<DatabaseInfo> pending_;  // set while a transaction has a stamp
    TIMEDATE replica_{};
    bool inTransaction_ = false;
    bool unseal_ = false;
};

// One clear line for a status: "is not a database", "is locked by another program", ...
std::string DescribeStatus(STATUS status);

}  // namespace pavex
