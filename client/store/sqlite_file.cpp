// client/store/sqlite_file.cpp: makes a database file.
// It is written under another name and linked to its own when it is whole, so that neither a crash nor
// a second process that makes the same one leaves something that is not a database.
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>

#include "client/store/leftovers.h"
#include "client/store/sqlite_engine.h"
#include "client/store/status.h"

namespace pavex {
namespace {

// Everything that was written to the file is on the disk when it returns.
STATUS Flush(const std::string& path)
{
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return StatusOfErrno(errno);
    const STATUS status = fsync(file) == 0 ? kStatusOk : StatusOfErrno(errno);
    close(file);
    return status;
}

// Gives the file its name; 519 when there is one of that name.
STATUS Publish(const std::string& from, const std::string& to)
{
    if (link(from.c_str(), to.c_str()) == 0)
        return 0;
    if (errno == EEXIST)
        return kStatusNoAccess;
    if (errno != EPERM && errno != EOPNOTSUPP)
        return StatusOfErrno(errno);
    // A file system without links: a race is not noticed there, a crash still harmless.
    if (access(to.c_str(), F_OK) == 0)
        return kStatusNoAccess;
    return rename(from.c_str(), to.c_str()) == 0 ? kStatusOk : StatusOfErrno(errno);
}

}  // namespace

STATUS SqliteEngine::WriteFile(const std::string& path, const DatabaseInfo& info)
{
    std::unique_ptr<Connection> connection;
    if (const STATUS status = Connection::CreateFile(path, &connection); status != 0)
        return status;
    SqliteEngine engine(std::move(connection));
    const std::string numbers = "PRAGMA application_id=" + std::to_string(kApplicationId) +
                                "; PRAGMA user_version=" + std::to_string(kSchemaVersion) + ";";
    STATUS status = engine.Write([&] {
        const STATUS made = engine.connection().Execute(numbers + kSchema);
        return made == 0 ? engine.WriteInfo(info) : made;
    });
    if (status == 0)
        status = engine.connection().Execute("PRAGMA journal_mode=WAL");
    return status;
}

STATUS SqliteEngine::Create(const std::string& path, const DatabaseInfo& info)
{
    if (access(path.c_str(), F_OK) == 0)
        return kStatusNoAccess;
    static std::atomic<unsigned> count{0};
    const std::string beside = path + "." + MakerMark() + std::to_string(++count) + ".new";
    STATUS status = WriteFile(beside, info);
    if (status == 0)
        status = Flush(beside);
    if (status == 0)
        status = Publish(beside, path);
    if (status == 0)
        SweepLeftoversOf(path);
    for (const char* suffix : {"", "-wal", "-shm", "-journal"})
        (void)unlink((beside + suffix).c_str());  // most are not there
    return status;
}

}  // namespace pavex
