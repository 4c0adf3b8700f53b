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
    // existing one; OpenOrCreate does whichever fits.
    static STATUS Open(const std::string& path, std::unique_ptr<Database>* database);
    static STATUS Create(const std::string& path, std::string_view titleUtf8, std::unique_ptr<Database>* database);
    static STATUS OpenOrCreate(const std::string& path, std::string_view titleUtf8, std::unique_ptr<Database>* database);
    ~Database();

    const std::string& Path() const { return path_; }
    TIMEDATE ReplicaId() const;
    std::string Title() const;  // UTF-8
    STATUS SetTitle(std::string_view utf8);

    // A write transaction: one change stamp for all that is written in it.  Writes outside of one are a
    // transaction each.  Begin takes the write lock (515 when another process keeps it for 10 s).
    STATUS Begin();
    STATUS Commit();
    void Rollback();

    // Saves a note; fills in id, unid, sequence and times where they are 0 (sequence counts up).
    STATUS Put(Note* note);
    STATUS Get(uint32_t id, Note* note);  // 549, 551; sealed items are left out unless Unseal was called
    std::optional<uint32_t> FindUnid(const UNID& unid);
    STATUS Delete(uint32_t id);  // leaves a stub
    // Calls back in id order; false from the callback ends it.
    STATUS List(const std::function<bool(const NoteSummary&)>& callback);
    STATUS CountNotes(uint64_t* count);

    STATUS SetUnread(std::string_view userUtf8, uint32_t id, bool unread);
    STATUS IsUnread(std::string_view userUtf8, uint32_t id, bool* unread);

    STATUS FindSource(std::string_view key, std::optional<SourceEntry>* entry);
    STATUS PutSource(const SourceEntry& entry);
    STATUS DeleteSource(std::string_view key);
    STATUS ListSources(std::string_view source, const std::function<bool(const SourceEntry&)>& callback);

    Engine& engine() { return *engine_; }

private:
    Database(std::string path, std::unique_ptr<Engine> engine);
    std::string path_;
    std::unique_ptr<Engine> engine_;
};

// One clear line for a status: "is not a database", "is locked by another program", ...
std::string DescribeStatus(STATUS status);

}  // namespace pavex
