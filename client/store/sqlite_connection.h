// client/store/sqlite_connection.h: one SQLite connection to a database file, and its statements.
// Errors become the store's statuses here; nobody above sees a code of SQLite's.
#pragma once

#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "client/store/schema.h"
#include "platform/store.h"

namespace pavex {

// A statement in use: bind, step, read columns.  Reset when it goes.  Columns are borrowed until the
// next step.
class Query {
public:
    Query(sqlite3* db, sqlite3_stmt* statement, int error) : db_(db), statement_(statement), result_(error) {}
    ~Query();
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;

    Query& Bind(int place, int64_t number);
    Query& Bind(int place, std::string_view text);
    Query& BindBlob(int place, std::string_view bytes);  // borrowed until the statement is reset

    bool Row();             // steps; false at the end and on an error
    STATUS Run();           // steps once, for statements without rows
    STATUS Status() const;  // why Row() was false: 0 at the end
    bool Damaged() const { return (result_ & 0xFF) == SQLITE_CORRUPT || (result_ & 0xFF) == SQLITE_NOTADB; }

    int64_t Number(int column) const { return sqlite3_column_int64(statement_, column); }
    std::string_view Bytes(int column) const;

private:
    sqlite3* db_;
    sqlite3_stmt* statement_;
    int result_;
};

class Connection {
public:
    // path: native.  259, 513, 514, 515, 519 (see database.h); *connection is then empty.  A file that
    // cannot be written is opened for reading, also in a folder where nothing can be made.
    static STATUS Open(const std::string& path, std::unique_ptr<Connection>* connection);
    // A new, empty file under this name, without a log and not flushed to the disk.
    static STATUS CreateFile(const std::string& path, std::unique_ptr<Connection>* connection);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    Query Use(Sql statement);
    STATUS Execute(const std::string& sql);  // statements without results
    sqlite3* Handle() const { return db_; }  // borrowed
    bool InTransaction() const { return sqlite3_get_autocommit(db_) == 0; }

    // How long a lock is waited for, of connections that are opened from now on; milliseconds.
    static void SetBusyTimeout(int milliseconds);

private:
    explicit Connection(sqlite3* db) : db_(db) {}
    static STATUS OpenAs(const std::string& uri, int flags, const char* setup, std::unique_ptr<Connection>* connection);
    STATUS CheckFormat();
    STATUS ReadPragma(const char* sql, int64_t* value);

    sqlite3* db_;
    std::array<sqlite3_stmt*, kStatements.size()> statements_{};
};

// The store's status for a result code of SQLite's on this connection.
STATUS StatusOfSqlite(sqlite3* db, int result);

}  // namespace pavex
