// client/store/sqlite_engine.h: the engine that keeps a database in one SQLite file.
// The write-ahead log lets any number of processes read while one writes.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/store/engine.h"
#include "client/store/sqlite_connection.h"

namespace pavex {

class SqliteEngine : public Engine {
public:
    static STATUS Open(const std::string& path, std::unique_ptr<Engine>* engine);
    // Makes the file, which appears whole or not at all.  519 when there is one of the name.
    static STATUS Create(const std::string& path, const DatabaseInfo& info);

    STATUS Begin() override;
    STATUS Commit() override;
    void Rollback() override;
    STATUS ReadInfo(DatabaseInfo* info) override;
    STATUS WriteInfo(const DatabaseInfo& info) override;
    STATUS ReadRow(uint32_t id, bool withItems, NoteRow* row) override;
    STATUS ReadValue(uint32_t id, uint32_t position, std::string* bytes) override;
    STATUS WriteRow(NoteRow* row, const std::vector<LargeValue>& values,
                    const std::vector<std::string>& titles) override;
    STATUS WriteStamp(const NoteRow& row) override;
    STATUS FindUnid(const UNID& unid, uint32_t* id) override;
    STATUS ListRows(const std::function<bool(const NoteRow&)>& callback) override;
    STATUS CountLive(uint64_t* count) override;
    STATUS ListChanges(uint64_t since, uint16_t classMask, uint64_t* last,
                       const std::function<void(uint32_t id, bool deleted)>& callback) override;
    STATUS FindDesign(std::string_view title, uint16_t noteClass, uint32_t* id) override;
    STATUS SetUnread(std::string_view user, uint32_t id, bool unread) override;
    STATUS IsUnread(std::string_view user, uint32_t id, bool* unread) override;
    STATUS ListUnread(std::string_view user, const std::function<void(uint32_t id)>& callback) override;
    STATUS FindSource(std::string_view key, std::optional<SourceEntry>* entry) override;
    STATUS PutSource(const SourceEntry& entry) override;
    STATUS DeleteSource(std::string_view key) override;
    STATUS SourcesOf(std::string_view identity, std::vector<SourceEntry>* entries) override;
    STATUS ListSources(std::string_view source, const std::function<bool(const SourceEntry&)>& callback) override;

    Connection& connection() { return *connection_; }

private:
    explicit SqliteEngine(std::unique_ptr<Connection> connection) : connection_(std::move(connection)) {}
    static STATUS WriteFile(const std::string& path, const DatabaseInfo& info);
    // Runs `work` in the open transaction, or in one of its own.
    STATUS Write(const std::function<STATUS()>& work);
    STATUS WriteRowParts(NoteRow* row, const std::vector<LargeValue>& values, const std::vector<std::string>& titles);
    STATUS ReadInfoCopy(DatabaseInfo* info);
    // Rows by ascending id from *next on, as many as `most`; *next is where to go on, past the rows that
    // were read.  False in *damaged: that was all, or `most`.
    STATUS ReadHeads(uint64_t* next, int64_t most, std::vector<NoteRow>* rows, bool* damaged);
    STATUS SkipDamage(uint64_t* next, std::vector<NoteRow>* rows);
    STATUS ReadChanges(uint64_t since, uint16_t classMask, uint64_t* last,
                       const std::function<void(uint32_t id, bool deleted)>& callback);

    std::unique_ptr<Connection> connection_;
};

}  // namespace pavex
