// client/store/sqlite_connection.cpp: one SQLite connection to a database file, and its statements.
// No memory mapping: a file that another program truncates would end the process instead of the call.
#include "client/store/sqlite_connection.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "client/store/status.h"

namespace pavex {
namespace {

// 10 s: longer than any transaction of an import, shorter than a user's patience.
std::atomic<int> busyTimeoutMs{10'000};

// Synchronous NORMAL: with a write-ahead log a power cut can take the last transactions, never the
// database.  What they held comes again with the next import of the same source, and the stamps given
// out after it are the clock's, past those that were lost.  FULL would cost a disk flush a transaction.
constexpr const char* kSetup = "PRAGMA synchronous=NORMAL; PRAGMA cell_size_check=ON; PRAGMA cache_size=-8192;";
// The log's index stays in memory, since no file can be made beside the database.
constexpr const char* kSetupWithoutShared = "PRAGMA locking_mode=EXCLUSIVE; PRAGMA cell_size_check=ON;";
// SQLite reads a file that is shorter than it says, or whose schema is damaged, when it may take the schema
// as it comes.  What is left of it is then only read.
constexpr const char* kSetupDamaged = "PRAGMA writable_schema=ON; PRAGMA query_only=ON;";

constexpr off_t kLeastBytes = 512;  // the smallest page

// What can be told without opening the file.  It must not be opened here: closing it again would drop the
// locks that another connection of this process holds on it.
STATUS CheckFile(const std::string& path)
{
    struct stat about {};
    if (stat(path.c_str(), &about) != 0 || access(path.c_str(), R_OK) != 0)
        return StatusOfErrno(errno);
    return S_ISREG(about.st_mode) && about.st_size >= kLeastBytes ? STATUS{0} : kStatusNotADatabase;
}

std::string FileUri(const std::string& path, const char* parameters)
{
    constexpr char kHex[] = "0123456789ABCDEF";
    std::string uri = "file:";
    for (const char c : path) {
        if (c == '?' || c == '#' || c == '%') {
            uri += {'%', kHex[static_cast<unsigned char>(c) >> 4], kHex[static_cast<unsigned char>(c) & 15]};
        } else {
            uri += c;
        }
    }
    return uri + parameters;
}

bool HasLog(const std::string& path)
{
    struct stat about {};
    return stat((path + "-wal").c_str(), &about) == 0 && about.st_size > 0;
}

}  // namespace

STATUS StatusOfSqlite(sqlite3* db, int result)
{
    switch (result & 0xFF) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE:
        return kStatusOk;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
        return kStatusLocked;
    case SQLITE_READONLY:
        return kStatusReadOnly;
    case SQLITE_FULL:
        return kStatusDiskFull;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_ERROR:  // our statements are well-formed: the schema is not the one they were written for
        return kStatusDamaged;
    case SQLITE_NOMEM:
    case SQLITE_TOOBIG:
        return kStatusNoMemory;
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH:
    case SQLITE_IOERR:
        break;
    default:  // SQLite's own codes; what is left of them tells of a fault of ours or the device's
        return kStatusIoError;
    }
    const int error = db == nullptr ? 0 : sqlite3_system_errno(db);
    if (error == ENOSPC || error == EDQUOT)
        return kStatusDiskFull;
    // A file that ends before a page that its header promises.
    if (result == SQLITE_IOERR_SHORT_READ)
        return kStatusDamaged;
    return (result & 0xFF) == SQLITE_IOERR ? kStatusIoError : kStatusNoAccess;
}

Query::~Query()
{
    if (statement_ != nullptr) {
        sqlite3_reset(statement_);
        sqlite3_clear_bindings(statement_);
    }
}

Query& Query::Bind(int place, int64_t number)
{
    if (statement_ != nullptr)
        sqlite3_bind_int64(statement_, place, number);
    return *this;
}

Query& Query::Bind(int place, std::string_view text)
{
    // An empty view may hold a null pointer, which would bind NULL.
    const char* bytes = text.empty() ? "" : text.data();
    if (statement_ != nullptr)
        sqlite3_bind_text64(statement_, place, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8);
    return *this;
}

Query& Query::BindBlob(int place, std::string_view bytes)
{
    if (statement_ == nullptr)
        return *this;
    const int result = bytes.empty()
                           ? sqlite3_bind_zeroblob(statement_, place, 0)
                           : sqlite3_bind_blob64(statement_, place, bytes.data(), bytes.size(), SQLITE_STATIC);
    if (result != SQLITE_OK)
        result_ = result;  // too big
    return *this;
}

bool Query::Row()
{
    if (statement_ == nullptr || (result_ != SQLITE_OK && result_ != SQLITE_ROW))
        return false;
    result_ = sqlite3_step(statement_);
    return result_ == SQLITE_ROW;
}

STATUS Query::Run()
{
    (void)Row();
    return Status();
}

STATUS Query::Status() const
{
    return StatusOfSqlite(db_, result_);
}

std::string_view Query::Bytes(int column) const
{
    const void* bytes = sqlite3_column_blob(statement_, column);
    const auto count = static_cast<size_t>(sqlite3_column_bytes(statement_, column));
    return bytes == nullptr ? std::string_view{} : std::string_view{static_cast<const char*>(bytes), count};
}

void Connection::SetBusyTimeout(int milliseconds)
{
    busyTimeoutMs = milliseconds;
}

STATUS Connection::OpenAs(const std::string& uri, int flags, const char* setup, std::unique_ptr<Connection>* connection)
{
    sqlite3* db = nullptr;
    const int result = sqlite3_open_v2(uri.c_str(), &db, flags | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr);
    std::unique_ptr<Connection> opened(new Connection(db));
    if (result != SQLITE_OK)
        return StatusOfSqlite(db, result);
    sqlite3_extended_result_codes(db, 1);
    sqlite3_busy_timeout(db, busyTimeoutMs);
    STATUS status = opened->Execute(setup);
    if (status == 0)
        status = opened->CheckFormat();
    if (status == kStatusDamaged) {
        status = opened->Execute(kSetupDamaged);
        if (status == 0)
            status = opened->CheckFormat();
    }
    if (status == 0)
        *connection = std::move(opened);
    return status == kStatusDamaged ? kStatusNotADatabase : status;
}

STATUS Connection::Open(const std::string& path, std::unique_ptr<Connection>* connection)
{
    if (const STATUS status = CheckFile(path); status != 0)
        return status;
    STATUS status = OpenAs(FileUri(path, ""), SQLITE_OPEN_READWRITE, kSetup, connection);
    if (status != kStatusNoAccess && status != kStatusReadOnly)
        return status;
    // No file can be made beside it, so nobody has it open for writing: a writer's files would be there.
    // What a writer left in the log is read from it; without one the file stands still.
    return HasLog(path) ? OpenAs(FileUri(path, "?vfs=unix-none"), SQLITE_OPEN_READONLY, kSetupWithoutShared, connection)
                        : OpenAs(FileUri(path, "?immutable=1"), SQLITE_OPEN_READONLY, kSetup, connection);
}

STATUS Connection::CreateFile(const std::string& path, std::unique_ptr<Connection>* connection)
{
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file < 0)
        return errno == EEXIST ? kStatusNoAccess : StatusOfErrno(errno);
    close(file);
    sqlite3* db = nullptr;
    const int result = sqlite3_open_v2(FileUri(path, "").c_str(), &db,
                                       SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr);
    std::unique_ptr<Connection> opened(new Connection(db));
    if (result != SQLITE_OK)
        return StatusOfSqlite(db, result);
    sqlite3_extended_result_codes(db, 1);
    *connection = std::move(opened);
    // Nobody sees the file before it is whole; its maker flushes it once, then.
    return (*connection)->Execute("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF;");
}

Connection::~Connection()
{
    for (sqlite3_stmt* statement : statements_)
        sqlite3_finalize(statement);
    sqlite3_close(db_);
}

Query Connection::Use(Sql statement)
{
    const auto index = static_cast<size_t>(statement);
    int result = SQLITE_OK;
    if (statements_[index] == nullptr)
        result =
            sqlite3_prepare_v3(db_, kStatements[index], -1, SQLITE_PREPARE_PERSISTENT, &statements_[index], nullptr);
    return {db_, statements_[index], result};
}

STATUS Connection::Execute(const std::string& sql)
{
    return StatusOfSqlite(db_, sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr));
}

STATUS Connection::ReadPragma(const char* sql, int64_t* value)
{
    sqlite3_stmt* statement = nullptr;
    int result = sqlite3_prepare_v2(db_, sql, -1, &statement, nullptr);
    if (result == SQLITE_OK)
        result = sqlite3_step(statement);
    *value = result == SQLITE_ROW ? sqlite3_column_int64(statement, 0) : 0;
    sqlite3_finalize(statement);
    return StatusOfSqlite(db_, result);
}

STATUS Connection::CheckFormat()
{
    int64_t application = 0;
    int64_t version = 0;
    STATUS status = ReadPragma("PRAGMA application_id", &application);
    if (status == 0)
        status = ReadPragma("PRAGMA user_version", &version);
    if (status != 0)
        return status;
    if (application != kApplicationId || version < 1)
        return kStatusNotADatabase;
    if (version > kSchemaVersion)
        return kStatusNewerFormat;
    int64_t tables = 0;
    return ReadPragma("SELECT count(*) FROM pragma_table_info('note')", &tables);  // reads the schema
}

}  // namespace pavex
