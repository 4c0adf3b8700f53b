// client/store/engine.h: what a database needs of whatever keeps its notes.
// The C calls and class Database know nothing else, so a second engine (a server's) comes in here.  An
// engine stores and finds; what a note is, which stamp it gets and what its items mean is Database's.
// One thread at a time.  Outside of a transaction each write is one of its own.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "client/store/database.h"
#include "platform/store.h"

namespace pavex {

// Stamps are hundredths of a second since the minimum time (HundredthsOf).
struct DatabaseInfo {
    TIMEDATE replica{};
    std::string title;         // UTF-8
    uint64_t lastStamp = 0;    // the greatest that was ever given out
    uint64_t dataStamp = 0;    // of the last change of a document
    uint64_t designStamp = 0;  // of the last change of another note or of the title
};

constexpr uint16_t kRowDeleted = 1;  // a stub: no items
constexpr uint16_t kRowSealed = 2;
constexpr uint16_t kRowSigned = 4;

struct NoteRow {
    uint32_t id = 0;
    UNID unid{};
    uint32_t sequence = 0;
    TIMEDATE modified{};
    uint16_t noteClass = 0;
    uint16_t flags = 0;
    uint64_t stamp = 0;
    std::string items;  // EncodeItems
};

// A value that is too large to be read whenever its note is.
struct LargeValue {
    uint32_t position;  // of its item in the note, from 0
    std::string bytes;  // type word first
};

class Engine {
public:
    virtual ~Engine() = default;

    // Begin takes the lock that keeps other writers out; 515 when one keeps it too long.
    virtual STATUS Begin() = 0;
    virtual STATUS Commit() = 0;  // not committed: rolled back
    virtual void Rollback() = 0;

    virtual STATUS ReadInfo(DatabaseInfo* info) = 0;
    virtual STATUS WriteInfo(const DatabaseInfo& info) = 0;

    // Stubs are rows like others.  551 for no such row; 518 when it is damaged.
    virtual STATUS ReadRow(uint32_t id, bool withItems, NoteRow* row) = 0;
    virtual STATUS ReadValue(uint32_t id, uint32_t position, std::string* bytes) = 0;
    // Writes the row and its large values in place of those before; row->id 0 is given the next id.
    // titles: what a design note is found by.  A deleted row is nobody's unread note.
    virtual STATUS WriteRow(NoteRow* row, const std::vector<LargeValue>& values,
                            const std::vector<std::string>& titles) = 0;
    // Writes the stamp of a row that was read, and nothing else of it.
    virtual STATUS WriteStamp(const NoteRow& row) = 0;
    virtual STATUS FindUnid(const UNID& unid, uint32_t* id) = 0;  // stubs too; 551
    // All rows without their items, by ascending id; unreadable ones are passed over.
    virtual STATUS ListRows(const std::function<bool(const NoteRow&)>& callback) = 0;
    virtual STATUS CountLive(uint64_t* count) = 0;
    // Rows of the classes with a stamp greater than `since`, in any order, and *last, the greatest stamp of
    // the database, from one state of it.  The callback makes no calls.
    virtual STATUS ListChanges(uint64_t since, uint16_t classMask, uint64_t* last,
                               const std::function<void(uint32_t id, bool deleted)>& callback) = 0;
    virtual STATUS FindDesign(std::string_view title, uint16_t noteClass, uint32_t* id) = 0;  // 593

    virtual STATUS SetUnread(std::string_view user, uint32_t id, bool unread) = 0;
    virtual STATUS IsUnread(std::string_view user, uint32_t id, bool* unread) = 0;
    virtual STATUS ListUnread(std::string_view user, const std::function<void(uint32_t id)>& callback) = 0;

    virtual STATUS FindSource(std::string_view key, std::optional<SourceEntry>* entry) = 0;
    virtual STATUS PutSource(const SourceEntry& entry) = 0;
    virtual STATUS DeleteSource(std::string_view key) = 0;
    // Those whose key is the identity, or the identity and "#" before anything else.
    virtual STATUS SourcesOf(std::string_view identity, std::vector<SourceEntry>* entries) = 0;
    // By ascending key.
    virtual STATUS ListSources(std::string_view source, const std::function<bool(const SourceEntry&)>& callback) = 0;
};

}  // namespace pavex
