// client/store/c_database.cpp: the calls on databases.
#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "client/store/charset.h"
#include "client/store/engine.h"
#include "client/store/id_table.h"
#include "client/store/open_database.h"
#include "client/store/open_table.h"
#include "client/store/path.h"
#include "platform/store.h"

namespace pavex {

HandleTable<OpenDatabase>& OpenDatabases()
{
    static HandleTable<OpenDatabase> databases;
    return databases;
}

std::shared_ptr<Database> DatabaseOf(DBHANDLE handle)
{
    const OpenDatabase* const open = OpenDatabases().Find(handle);
    return open == nullptr ? nullptr : open->database;
}

namespace {

constexpr WORD kModeOrdinary = 1;
constexpr size_t kInfoBytes = 128;
constexpr WORD kInfoTitle = 0;

}  // namespace
}  // namespace pavex

using pavex::DatabaseOf;
using pavex::OpenDatabases;

STATUS VLTDbOpen(const char* path, DBHANDLE* db)
{
    *db = 0;
    std::string native;
    std::unique_ptr<pavex::Database> database;
    STATUS status = pavex::ResolvePath(path, &native);
    if (status == 0)
        status = pavex::Database::Open(native, &database);
    if (status != 0)
        return status;
    auto open = std::make_unique<pavex::OpenDatabase>();
    open->database = std::move(database);
    *db = OpenDatabases().Add(std::move(open));
    ++pavex::openDatabasesOfThread;
    return 0;
}

STATUS VLTDbClose(DBHANDLE db)
{
    if (!OpenDatabases().Remove(db))
        return kStatusBadHandle;
    --pavex::openDatabasesOfThread;
    return 0;
}

STATUS VLTDbModeGet(DBHANDLE db, WORD* mode)
{
    if (!DatabaseOf(db))
        return kStatusBadHandle;
    *mode = pavex::kModeOrdinary;
    return 0;
}

STATUS VLTDbModifiedTime(DBHANDLE db, TIMEDATE* data, TIMEDATE* nonData)
{
    const auto database = DatabaseOf(db);
    return database ? database->ChangeTimes(data, nonData) : kStatusBadHandle;
}

STATUS VLTDbReplicaInfoGet(DBHANDLE db, DBREPLICAINFO* info)
{
    const auto database = DatabaseOf(db);
    if (!database)
        return kStatusBadHandle;
    *info = DBREPLICAINFO{};
    info->ID = database->ReplicaId();
    return 0;
}

STATUS VLTDbGetModifiedNoteTable(DBHANDLE db, WORD classMask, TIMEDATE since, TIMEDATE* until, IDTABLE* table)
{
    *table = 0;
    const auto database = DatabaseOf(db);
    if (!database)
        return kStatusBadHandle;
    pavex::IdTable ids;
    const STATUS status = database->ModifiedNotes(classMask, since, until, &ids);
    if (status == 0)
        *table = pavex::OpenTables().Add(std::make_unique<pavex::OpenTable>(std::move(ids)));
    return status;
}

STATUS VLTDbGetUnreadNoteTable(DBHANDLE db, const char* name, WORD nameLength, DWORD /*flags*/, IDTABLE* table)
{
    *table = 0;
    if (!DatabaseOf(db))
        return kStatusBadHandle;
    // Asked for with every pass, looked into seldom.
    auto load = [db, user = pavex::Utf8FromScs({name, nameLength})](pavex::IdTable* ids) {
        const auto database = DatabaseOf(db);
        return database ? database->UnreadNotes(user, ids) : kStatusBadHandle;
    };
    *table = pavex::OpenTables().Add(std::make_unique<pavex::OpenTable>(std::move(load)));
    return 0;
}

STATUS VLTDbGetNoteInfo(DBHANDLE db, NOTEID id, ORIGINATORID* oid, TIMEDATE* modified, WORD* noteClass)
{
    const auto database = DatabaseOf(db);
    if (!database)
        return kStatusBadHandle;
    pavex::NoteRow row;
    if (const STATUS status = database->ReadRow(id, false, &row); status != 0)
        return status;
    if (oid != nullptr)
        *oid = {row.unid, row.sequence, row.modified};
    if (modified != nullptr)
        *modified = row.modified;
    if (noteClass != nullptr)
        *noteClass = row.noteClass;
    return (row.flags & pavex::kRowDeleted) != 0 ? kStatusNoteDeleted : kStatusOk;
}

STATUS VLTDbInfoGet(DBHANDLE db, char* info128)
{
    const auto database = DatabaseOf(db);
    if (!database)
        return kStatusBadHandle;
    std::memset(info128, 0, pavex::kInfoBytes);
    std::string title = pavex::ScsFromUtf8(database->Title());
    // A line break would begin the next field.
    std::replace(title.begin(), title.end(), '\n', ' ');
    std::memcpy(info128, title.data(), pavex::ScsPrefix(title, pavex::kInfoBytes - 1));
    return 0;
}

void VLTDbInfoParse(const char* info128, WORD field, char* buffer, WORD size)
{
    if (size == 0)
        return;
    const std::string_view info(info128, strnlen(info128, pavex::kInfoBytes));
    const std::string_view title = field == pavex::kInfoTitle ? info.substr(0, info.find('\n')) : std::string_view{};
    const size_t bytes = pavex::ScsPrefix(title, size - 1U);
    title.copy(buffer, bytes);
    buffer[bytes] = '\0';
}

STATUS IDXFindDesignNote(DBHANDLE db, const char* name, WORD noteClass, NOTEID* id)
{
    const auto database = DatabaseOf(db);
    return database ? database->FindDesignNote(pavex::Utf8FromScs(name), noteClass, id) : kStatusBadHandle;
}
