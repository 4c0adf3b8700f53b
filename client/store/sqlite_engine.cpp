// client/store/sqlite_engine.cpp: the engine that keeps a database in one SQLite file.
// Reading goes on past pages that are damaged, since every other note is still worth having.
#include "client/store/sqlite_engine.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "client/store/item_codec.h"

namespace pavex {
namespace {

constexpr uint64_t kMostId = 0x7FFFFFFF;  // the top bit marks deletions
constexpr int64_t kRowsAtOnce = 256;

template <typename Value> std::string_view BytesOf(const Value& value)
{
    return {reinterpret_cast<const char*>(&value), sizeof value};
}

template <typename Value> bool FromBytes(std::string_view bytes, Value* value)
{
    if (bytes.size() != sizeof *value)
        return false;
    std::memcpy(value, bytes.data(), sizeof *value);
    return true;
}

int64_t ValueId(uint32_t note, uint32_t position)
{
    return static_cast<int64_t>(uint64_t{note} << 32 | position);
}

// Over all of a row but its items, which have their own.
uint64_t HeadChecksum(const NoteRow& row)
{
    const uint64_t fields[] = {row.id, row.sequence, row.noteClass, row.flags, row.stamp};
    return Checksum(BytesOf(row.unid), Checksum(BytesOf(row.modified), Checksum(BytesOf(fields))));
}

// Columns as kReadHead and kReadRow list them.  False for a damaged row.
bool TakeHead(const Query& query, NoteRow* row)
{
    row->id = static_cast<uint32_t>(query.Number(0));
    row->sequence = static_cast<uint32_t>(query.Number(2));
    row->noteClass = static_cast<uint16_t>(query.Number(4));
    row->flags = static_cast<uint16_t>(query.Number(5));
    row->stamp = static_cast<uint64_t>(query.Number(6));
    return FromBytes(query.Bytes(1), &row->unid) && FromBytes(query.Bytes(3), &row->modified) &&
           static_cast<uint64_t>(query.Number(7)) == HeadChecksum(*row);
}

SourceEntry TakeSource(const Query& query)
{
    return {std::string(query.Bytes(0)), std::string(query.Bytes(1)), std::string(query.Bytes(2)),
            static_cast<uint32_t>(query.Number(3))};
}

}  // namespace

STATUS SqliteEngine::Open(const std::string& path, std::unique_ptr<Engine>* engine)
{
    std::unique_ptr<Connection> connection;
    const STATUS status = Connection::Open(path, &connection);
    if (status == 0)
        engine->reset(new SqliteEngine(std::move(connection)));
    return status;
}

STATUS SqliteEngine::Begin()
{
    return connection_->Use(Sql::kBeginWrite).Run();
}

STATUS SqliteEngine::Commit()
{
    const STATUS status = connection_->Use(Sql::kCommit).Run();
    if (status != 0)
        Rollback();
    return status;
}

void SqliteEngine::Rollback()
{
    // A full disk ends the transaction by itself.
    if (connection_->InTransaction())
        (void)connection_->Use(Sql::kRollback).Run();
}

STATUS SqliteEngine::Write(const std::function<STATUS()>& work)
{
    if (connection_->InTransaction())
        return work();
    STATUS status = Begin();
    if (status != 0)
        return status;
    status = work();
    if (status == 0)
        return Commit();
    Rollback();
    return status;
}

STATUS SqliteEngine::ReadInfo(DatabaseInfo* info)
{
    Query query = connection_->Use(Sql::kReadInfo);
    if (!query.Row() || !FromBytes(query.Bytes(0), &info->replica)) {
        const STATUS status = query.Status();
        return status == 0 || status == kStatusDamaged ? ReadInfoCopy(info) : status;
    }
    info->title = query.Bytes(1);
    info->lastStamp = static_cast<uint64_t>(query.Number(2));
    info->dataStamp = static_cast<uint64_t>(query.Number(3));
    info->designStamp = static_cast<uint64_t>(query.Number(4));
    return 0;
}

STATUS SqliteEngine::ReadInfoCopy(DatabaseInfo* info)
{
    Query query = connection_->Use(Sql::kReadInfoCopy);
    if (!query.Row() || !FromBytes(query.Bytes(0), &info->replica))
        return query.Status() == 0 ? kStatusDamaged : query.Status();
    info->title = query.Bytes(1);
    Query stamp = connection_->Use(Sql::kGreatestStamp);
    if (!stamp.Row())
        return stamp.Status();
    info->lastStamp = static_cast<uint64_t>(stamp.Number(0));
    info->dataStamp = info->lastStamp;
    info->designStamp = info->lastStamp;
    return 0;
}

STATUS SqliteEngine::WriteInfo(const DatabaseInfo& info)
{
    return Write([&] {
        const STATUS status = connection_->Use(Sql::kWriteInfo)
                                  .BindBlob(1, BytesOf(info.replica))
                                  .Bind(2, info.title)
                                  .Bind(3, static_cast<int64_t>(info.lastStamp))
                                  .Bind(4, static_cast<int64_t>(info.dataStamp))
                                  .Bind(5, static_cast<int64_t>(info.designStamp))
                                  .Run();
        if (status != 0)
            return status;
        return connection_->Use(Sql::kWriteInfoCopy).BindBlob(1, BytesOf(info.replica)).Bind(2, info.title).Run();
    });
}

STATUS SqliteEngine::ReadRow(uint32_t id, bool withItems, NoteRow* row)
{
    Query query = connection_->Use(withItems ? Sql::kReadRow : Sql::kReadHead);
    if (!query.Bind(1, int64_t{id}).Row())
        return query.Status() == 0 ? kStatusNoSuchNote : query.Status();
    if (!TakeHead(query, row))
        return kStatusDamaged;
    if (withItems)
        row->items = query.Bytes(8);
    return 0;
}

STATUS SqliteEngine::ReadValue(uint32_t id, uint32_t position, std::string* bytes)
{
    Query query = connection_->Use(Sql::kReadValue);
    if (!query.Bind(1, ValueId(id, position)).Row())
        return query.Status() == 0 ? kStatusDamaged : query.Status();
    const std::string_view stored = query.Bytes(1);
    if (static_cast<uint64_t>(query.Number(0)) != Checksum(stored, id))
        return kStatusDamaged;
    *bytes = stored;
    return 0;
}

STATUS SqliteEngine::WriteRow(NoteRow* row, const std::vector<LargeValue>& values,
                              const std::vector<std::string>& titles)
{
    return Write([&] { return WriteRowParts(row, values, titles); });
}

STATUS SqliteEngine::WriteRowParts(NoteRow* row, const std::vector<LargeValue>& values,
                                   const std::vector<std::string>& titles)
{
    STATUS status = 0;
    const bool isNew = row->id == 0;
    if (isNew) {
        Query next = connection_->Use(Sql::kNextId);
        if (!next.Row())
            return next.Status();
        if (next.Number(0) > static_cast<int64_t>(kMostId))
            return kStatusNoMemory;
        row->id = static_cast<uint32_t>(next.Number(0));
    } else {
        for (const Sql statement : {Sql::kDeleteValues, Sql::kDeleteDesign}) {
            status = connection_->Use(statement).Bind(1, int64_t{row->id}).Run();
            if (status != 0)
                return status;
        }
        if ((row->flags & kRowDeleted) != 0)
            status = connection_->Use(Sql::kSetReadByAll).Bind(1, int64_t{row->id}).Run();
        if (status != 0)
            return status;
    }
    status = connection_->Use(Sql::kWriteRow)
                 .Bind(1, int64_t{row->id})
                 .BindBlob(2, BytesOf(row->unid))
                 .Bind(3, int64_t{row->sequence})
                 .BindBlob(4, BytesOf(row->modified))
                 .Bind(5, int64_t{row->noteClass})
                 .Bind(6, int64_t{row->flags})
                 .Bind(7, static_cast<int64_t>(row->stamp))
                 .Bind(8, static_cast<int64_t>(HeadChecksum(*row)))
                 .BindBlob(9, row->items)
                 .Run();
    for (const LargeValue& value : values) {
        if (status != 0)
            return status;
        status = connection_->Use(Sql::kWriteValue)
                     .Bind(1, ValueId(row->id, value.position))
                     .Bind(2, static_cast<int64_t>(Checksum(value.bytes, row->id)))
                     .BindBlob(3, value.bytes)
                     .Run();
    }
    for (const std::string& title : titles) {
        if (status != 0)
            return status;
        status = connection_->Use(Sql::kWriteDesign)
                     .Bind(1, title)
                     .Bind(2, int64_t{row->noteClass})
                     .Bind(3, int64_t{row->id})
                     .Run();
    }
    return status;
}

STATUS SqliteEngine::WriteStamp(const NoteRow& row)
{
    return connection_->Use(Sql::kWriteStamp)
        .Bind(1, int64_t{row.id})
        .Bind(2, static_cast<int64_t>(row.stamp))
        .Bind(3, static_cast<int64_t>(HeadChecksum(row)))
        .Run();
}

STATUS SqliteEngine::FindUnid(const UNID& unid, uint32_t* id)
{
    Query query = connection_->Use(Sql::kFindUnid);
    if (!query.BindBlob(1, BytesOf(unid)).Row())
        return query.Status() == 0 ? kStatusNoSuchNote : query.Status();
    *id = static_cast<uint32_t>(query.Number(0));
    return 0;
}

STATUS SqliteEngine::ReadHeads(uint64_t* next, int64_t most, std::vector<NoteRow>* rows, bool* damaged)
{
    Query query = connection_->Use(Sql::kListHeads);
    query.Bind(1, static_cast<int64_t>(*next)).Bind(2, most);
    while (query.Row()) {
        NoteRow row;
        if (TakeHead(query, &row))
            rows->push_back(row);
        // A damaged row's id may be anything; one that goes back would be read for ever.
        *next = std::max(*next + 1, static_cast<uint64_t>(query.Number(0)) + 1);
    }
    *damaged = query.Damaged();
    return *damaged ? kStatusOk : query.Status();
}

// Looks for the next id after which rows can be read again: one by one for as many as a page holds, then
// by doubling steps, since a damaged inner page hides thousands.
STATUS SqliteEngine::SkipDamage(uint64_t* next, std::vector<NoteRow>* rows)
{
    constexpr uint64_t kSingleSteps = 512;
    uint64_t step = 1;
    bool damaged = true;
    for (uint64_t tries = 0; damaged && *next <= kMostId; ++tries) {
        if (tries > kSingleSteps)
            step *= 2;
        *next += step;
        const STATUS status = ReadHeads(next, 1, rows, &damaged);
        if (status != 0)
            return status;
        // Rows that lie before the damage in the same probe count as found.
        if (!rows->empty())
            return 0;
    }
    return 0;
}

STATUS SqliteEngine::ListRows(const std::function<bool(const NoteRow&)>& callback)
{
    uint64_t next = 1;
    while (next <= kMostId) {
        std::vector<NoteRow> rows;
        const uint64_t start = next;
        bool damaged = false;
        STATUS status = ReadHeads(&next, kRowsAtOnce, &rows, &damaged);
        if (status == 0 && damaged && rows.empty())
            status = SkipDamage(&next, &rows);
        if (status != 0)
            return status;
        for (const NoteRow& row : rows) {
            if (!callback(row))
                return 0;
        }
        if (next == start)
            break;
    }
    return 0;
}

STATUS SqliteEngine::CountLive(uint64_t* count)
{
    Query query = connection_->Use(Sql::kCountLive);
    if (!query.Row())
        return query.Status();
    *count = static_cast<uint64_t>(query.Number(0));
    return 0;
}

STATUS SqliteEngine::ListChanges(uint64_t since, uint16_t classMask, uint64_t* last,
                                 const std::function<void(uint32_t id, bool deleted)>& callback)
{
    if (connection_->InTransaction())
        return ReadChanges(since, classMask, last, callback);
    STATUS status = connection_->Use(Sql::kBeginRead).Run();
    if (status != 0)
        return status;
    status = ReadChanges(since, classMask, last, callback);
    Rollback();
    return status;
}

STATUS SqliteEngine::ReadChanges(uint64_t since, uint16_t classMask, uint64_t* last,
                                 const std::function<void(uint32_t id, bool deleted)>& callback)
{
    DatabaseInfo info;
    if (const STATUS status = ReadInfo(&info); status != 0)
        return status;
    *last = info.lastStamp;
    if (since >= info.lastStamp)
        return 0;
    const int64_t bound = static_cast<int64_t>(std::min<uint64_t>(since, std::numeric_limits<int64_t>::max()));
    bool damaged = false;
    {
        Query query = connection_->Use(Sql::kListChanges);
        query.Bind(1, bound).Bind(2, int64_t{classMask});
        while (query.Row())
            callback(static_cast<uint32_t>(query.Number(0)), (query.Number(1) & kRowDeleted) != 0);
        damaged = query.Damaged();
        if (!damaged)
            return query.Status();
    }
    // The index cannot be read: the notes themselves tell as much, at the price of looking at each.
    return ListRows([&](const NoteRow& row) {
        if (row.stamp > since && (row.noteClass & classMask) != 0)
            callback(row.id, (row.flags & kRowDeleted) != 0);
        return true;
    });
}

STATUS SqliteEngine::FindDesign(std::string_view title, uint16_t noteClass, uint32_t* id)
{
    Query query = connection_->Use(Sql::kFindDesign);
    if (!query.Bind(1, title).Bind(2, int64_t{noteClass}).Row())
        return query.Status();
    *id = static_cast<uint32_t>(query.Number(0));  // NULL: 0
    return *id == 0 ? kStatusNotFound : kStatusOk;
}

STATUS SqliteEngine::SetUnread(std::string_view user, uint32_t id, bool unread)
{
    return connection_->Use(unread ? Sql::kSetUnread : Sql::kSetRead).Bind(1, user).Bind(2, int64_t{id}).Run();
}

STATUS SqliteEngine::IsUnread(std::string_view user, uint32_t id, bool* unread)
{
    Query query = connection_->Use(Sql::kIsUnread);
    *unread = query.Bind(1, user).Bind(2, int64_t{id}).Row();
    return query.Status();
}

STATUS SqliteEngine::ListUnread(std::string_view user, const std::function<void(uint32_t id)>& callback)
{
    Query query = connection_->Use(Sql::kListUnread);
    query.Bind(1, user);
    while (query.Row())
        callback(static_cast<uint32_t>(query.Number(0)));
    return query.Status();
}

STATUS SqliteEngine::FindSource(std::string_view key, std::optional<SourceEntry>* entry)
{
    Query query = connection_->Use(Sql::kFindSource);
    entry->reset();
    if (query.Bind(1, key).Row())
        *entry = TakeSource(query);
    return query.Status();
}

STATUS SqliteEngine::PutSource(const SourceEntry& entry)
{
    return connection_->Use(Sql::kPutSource)
        .Bind(1, entry.key)
        .Bind(2, entry.source)
        .Bind(3, entry.digest)
        .Bind(4, int64_t{entry.noteId})
        .Run();
}

STATUS SqliteEngine::DeleteSource(std::string_view key)
{
    return connection_->Use(Sql::kDeleteSource).Bind(1, key).Run();
}

STATUS SqliteEngine::SourcesOf(std::string_view identity, std::vector<SourceEntry>* entries)
{
    Query query = connection_->Use(Sql::kSourcesOf);
    entries->clear();
    query.Bind(1, identity);
    while (query.Row())
        entries->push_back(TakeSource(query));
    return query.Status();
}

STATUS SqliteEngine::ListSources(std::string_view source, const std::function<bool(const SourceEntry&)>& callback)
{
    std::string after;
    for (;;) {
        std::vector<SourceEntry> entries;
        {
            Query query = connection_->Use(Sql::kListSources);
            query.Bind(1, source).Bind(2, after).Bind(3, kRowsAtOnce);
            while (query.Row())
                entries.push_back(TakeSource(query));
            if (query.Status() != 0)
                return query.Status();
        }
        for (const SourceEntry& entry : entries) {
            if (!callback(entry))
                return 0;
        }
        if (entries.size() < static_cast<size_t>(kRowsAtOnce))
            return 0;
        after = entries.back().key;
    }
}

}  // namespace pavex
