// client/store/database.cpp: what notes, stamps and transactions mean, over any engine.
#include "client/store/database.h"

#include <sys/random.h>
#include <sys/stat.h>

#include <algorithm>

#include "client/store/clock.h"
#include "client/store/engine.h"
#include "client/store/id_table.h"
#include "client/store/item_codec.h"
#include "client/store/open_note.h"
#include "client/store/path.h"
#include "client/store/sqlite_engine.h"
#include "client/store/timedate.h"

namespace pavex {
namespace {

uint64_t NowStamp()
{
    constexpr uint64_t kHundredths = 100;
    const uint64_t now = CurrentClock().NowHundredths();
    return HundredthsOf(TimeFromUnix(static_cast<int64_t>(now / kHundredths), static_cast<int>(now % kHundredths)));
}

bool IsZero(const TIMEDATE& time)
{
    return time.Innards[0] == 0 && time.Innards[1] == 0;
}

// Never zero, which stands for "none".
TIMEDATE RandomId()
{
    TIMEDATE id{};
    while (IsZero(id)) {
        // Up to 256 bytes the kernel gives all or, before it has any, makes the caller wait.
        if (getrandom(&id, sizeof id, 0) != sizeof id)
            id = TIMEDATE{};
    }
    return id;
}

std::vector<std::string> DesignTitles(const Note& note)
{
    const Item* title = note.noteClass == kClassDocument ? nullptr : note.Find("$Title");
    return title == nullptr ? std::vector<std::string>{} : TextValues(*title).value_or(std::vector<std::string>{});
}

uint16_t RowFlags(const Note& note)
{
    const bool isSigned = std::any_of(note.items.begin(), note.items.end(),
                                      [](const Item& item) { return (item.flags & kItemSign) != 0; });
    return static_cast<uint16_t>((note.sealed ? kRowSealed : 0) | (isSigned ? kRowSigned : 0));
}

void TakeIdentity(const NoteRow& row, Note* note)
{
    note->id = row.id;
    note->unid = row.unid;
    note->sequence = row.sequence;
    note->created = row.unid.Note;
    note->modified = row.modified;
    note->noteClass = row.noteClass;
    note->sealed = (row.flags & kRowSealed) != 0;
    note->items.clear();
}

}  // namespace

Database::Database(std::string path, std::unique_ptr<Engine> engine)
    : path_(std::move(path)), engine_(std::move(engine))
{
}

Database::~Database()
{
    Rollback();
}

STATUS Database::Open(const std::string& path, std::unique_ptr<Database>* database)
{
    database->reset();
    if (IsOnServer(path))
        return kStatusRemoteUnreachable;  // to the system it is a file of this machine
    std::unique_ptr<Engine> engine;
    STATUS status = SqliteEngine::Open(path, &engine);
    DatabaseInfo info;
    if (status == 0)
        status = engine->ReadInfo(&info);
    if (status == kStatusDamaged)
        return kStatusNotADatabase;  // without a replica id nothing in it has an address
    if (status != 0)
        return status;
    database->reset(new Database(path, std::move(engine)));
    (*database)->replica_ = info.replica;
    return 0;
}

STATUS Database::Create(const std::string& path, std::string_view titleUtf8, std::unique_ptr<Database>* database)
{
    database->reset();
    if (IsOnServer(path))
        return kStatusRemoteUnreachable;
    DatabaseInfo info;
    info.replica = RandomId();
    info.title = titleUtf8;
    info.lastStamp = info.dataStamp = info.designStamp = NowStamp();
    const STATUS status = SqliteEngine::Create(path, info);
    return status != 0 ? status : Open(path, database);
}

STATUS Database::OpenOrCreate(const std::string& path, std::string_view titleUtf8, std::unique_ptr<Database>* database)
{
    const STATUS status = Open(path, database);
    if (status != kStatusNoSuchFile)
        return status;
    const STATUS created = Create(path, titleUtf8, database);
    // Another process may have made it just now.
    return created == kStatusNoAccess ? Open(path, database) : created;
}

std::string Database::Title() const
{
    if (pending_)
        return pending_->title;
    DatabaseInfo info;
    return engine_->ReadInfo(&info) == 0 ? info.title : std::string{};
}

STATUS Database::SetTitle(std::string_view utf8)
{
    return Write([&] {
        const STATUS status = TakeStamp(0);
        if (status == 0)
            pending_->title = utf8;
        return status;
    });
}

STATUS Database::Begin()
{
    const STATUS status = engine_->Begin();
    inTransaction_ = status == 0;
    return status;
}

STATUS Database::Commit()
{
    if (!inTransaction_)
        return 0;
    STATUS status = pending_ ? engine_->WriteInfo(*pending_) : kStatusOk;
    if (status == 0)
        status = engine_->Commit();
    if (status != 0)
        engine_->Rollback();
    inTransaction_ = false;
    pending_.reset();
    return status;
}

void Database::Rollback()
{
    if (inTransaction_)
        engine_->Rollback();
    inTransaction_ = false;
    pending_.reset();
}

STATUS Database::Write(const std::function<STATUS()>& work)
{
    if (inTransaction_)
        return work();
    STATUS status = Begin();
    if (status == 0)
        status = work();
    if (status == 0)
        return Commit();
    Rollback();
    return status;
}

// The transaction's stamp, taken with its first change.  The lock is held by then, so that no other process
// can take the same, and stamps become visible in the order they were taken.
STATUS Database::TakeStamp(uint16_t noteClass)
{
    if (!pending_) {
        auto info = std::make_unique<DatabaseInfo>();
        if (const STATUS status = engine_->ReadInfo(info.get()); status != 0)
            return status;
        info->lastStamp = std::max(NowStamp(), info->lastStamp + 1);
        pending_ = std::move(info);
    }
    if (noteClass == kClassDocument)
        pending_->dataStamp = pending_->lastStamp;
    else
        pending_->designStamp = pending_->lastStamp;
    return 0;
}

STATUS Database::Put(Note* note)
{
    return Write([&] { return SaveNote(note); });
}

// Settles which row a note is saved in, and its identity.  row: the row as it was, id 0 for a new one.
STATUS Database::Identify(Note* note, NoteRow* row)
{
    const bool hasUnid = !IsZero(note->unid.File) || !IsZero(note->unid.Note);
    uint32_t id = note->id;
    if (id == 0 && hasUnid) {
        const STATUS status = engine_->FindUnid(note->unid, &id);
        if (status != 0 && status != kStatusNoSuchNote)
            return status;
    }
    if (id != 0) {
        const STATUS status = engine_->ReadRow(id, false, row);
        if (status != 0)
            return status;
        if (note->id != 0 && (row->flags & kRowDeleted) != 0)
            return kStatusNoteDeleted;
        return 0;
    }
    row->unid = note->unid;
    row->sequence = note->sequence == 0 ? 0 : note->sequence - 1;
    if (!hasUnid) {
        row->unid.File = RandomId();
        row->unid.Note = IsZero(note->created) ? TimeFromHundredths(NowStamp()) : note->created;
    }
    return 0;
}

STATUS Database::SaveNote(Note* note)
{
    NoteRow row;
    STATUS status = Identify(note, &row);
    std::vector<LargeValue> large;
    if (status == 0)
        status = EncodeItems(note->items, note->sealed, &row.items, &large);
    if (status == 0)
        status = TakeStamp(note->noteClass);
    if (status != 0)
        return status;
    ++row.sequence;
    row.modified = IsZero(note->modified) ? TimeFromHundredths(NowStamp()) : note->modified;
    row.noteClass = note->noteClass;
    row.flags = RowFlags(*note);
    row.stamp = pending_->lastStamp;
    status = engine_->WriteRow(&row, large, DesignTitles(*note));
    if (status != 0)
        return status;
    note->id = row.id;
    note->unid = row.unid;
    note->sequence = row.sequence;
    note->created = row.unid.Note;
    note->modified = row.modified;
    return 0;
}

STATUS Database::Delete(uint32_t id)
{
    return Write([&] { return SaveStub(id); });
}

STATUS Database::SaveStub(uint32_t id)
{
    NoteRow row;
    if (const STATUS status = StampRow(id, &row); status != 0)
        return status;
    ++row.sequence;
    row.modified = TimeFromHundredths(NowStamp());
    row.flags = kRowDeleted;
    return engine_->WriteRow(&row, {}, {});
}

STATUS Database::Touch(uint32_t id)
{
    return Write([&] { return SaveStamp(id); });
}

STATUS Database::SaveStamp(uint32_t id)
{
    NoteRow row;
    const STATUS status = StampRow(id, &row);
    return status != 0 ? status : engine_->WriteStamp(row);
}

STATUS Database::StampRow(uint32_t id, NoteRow* row)
{
    STATUS status = engine_->ReadRow(id, false, row);
    if (status == 0 && (row->flags & kRowDeleted) != 0)
        status = kStatusNoteDeleted;
    if (status == 0)
        status = TakeStamp(row->noteClass);
    if (status == 0)
        row->stamp = pending_->lastStamp;
    return status;
}

STATUS Database::Get(uint32_t id, Note* note)
{
    NoteRow row;
    STATUS status = engine_->ReadRow(id, true, &row);
    if (status != 0)
        return status;
    TakeIdentity(row, note);
    if ((row.flags & kRowDeleted) != 0)
        return kStatusNoteDeleted;
    // Borrows itself for the length of the call.
    OpenNote open(std::shared_ptr<Database>(std::shared_ptr<void>(), this), 0);
    status = open.Fill(std::move(row));
    if (status == 0 && unseal_)
        status = open.Decrypt();
    for (size_t i = 0; status == 0 && i < open.Count(); ++i) {
        if (!open.Readable(i))
            continue;
        const OpenNote::Slot& slot = open.At(i);
        const char* value = open.Value(i);
        if (value == nullptr)
            return kStatusDamaged;
        note->items.push_back({std::string(slot.name), slot.type, slot.flags,
                               std::string(value + sizeof slot.type, slot.bytes - sizeof slot.type)});
    }
    return status;
}

std::optional<uint32_t> Database::FindUnid(const UNID& unid)
{
    uint32_t id = 0;
    NoteRow row;
    if (engine_->FindUnid(unid, &id) != 0 || engine_->ReadRow(id, false, &row) != 0 || (row.flags & kRowDeleted) != 0)
        return std::nullopt;
    return id;
}

STATUS Database::List(const std::function<bool(const NoteSummary&)>& callback)
{
    return engine_->ListRows([&](const NoteRow& row) {
        return (row.flags & kRowDeleted) != 0 || callback({row.id, row.unid, row.modified, row.noteClass});
    });
}

STATUS Database::CountNotes(uint64_t* count)
{
    return engine_->CountLive(count);
}

STATUS Database::SetUnread(std::string_view userUtf8, uint32_t id, bool unread)
{
    return Write([&] {
        NoteRow row;
        const STATUS status = engine_->ReadRow(id, false, &row);
        if (status != 0)
            return status;
        if ((row.flags & kRowDeleted) != 0)
            return kStatusNoteDeleted;
        return engine_->SetUnread(userUtf8, id, unread);
    });
}

STATUS Database::IsUnread(std::string_view userUtf8, uint32_t id, bool* unread)
{
    return engine_->IsUnread(userUtf8, id, unread);
}

STATUS Database::FindSource(std::string_view key, std::optional<SourceEntry>* entry)
{
    return engine_->FindSource(key, entry);
}

STATUS Database::PutSource(const SourceEntry& entry)
{
    return engine_->PutSource(entry);
}

STATUS Database::DeleteSource(std::string_view key)
{
    return engine_->DeleteSource(key);
}

STATUS Database::SourcesOf(std::string_view identity, std::vector<SourceEntry>* entries)
{
    return engine_->SourcesOf(identity, entries);
}

STATUS Database::ListSources(std::string_view source, const std::function<bool(const SourceEntry&)>& callback)
{
    return engine_->ListSources(source, callback);
}

STATUS Database::ReadRow(uint32_t id, bool withItems, NoteRow* row)
{
    return engine_->ReadRow(id, withItems, row);
}

STATUS Database::ReadValue(uint32_t id, uint32_t position, std::string* value)
{
    return engine_->ReadValue(id, position, value);
}

STATUS Database::ModifiedNotes(uint16_t classMask, const TIMEDATE& since, TIMEDATE* until, IdTable* table)
{
    const uint64_t from = HundredthsOf(since);
    uint64_t last = 0;
    const STATUS status = engine_->ListChanges(
        from, classMask, &last, [&](uint32_t id, bool deleted) { table->Add(deleted ? id | kDeletionBit : id); });
    if (status != 0)
        return status;
    table->Sort();
    *until = from > last ? since : TimeFromHundredths(last);
    return table->Empty() ? kStatusNothingModified : kStatusOk;
}

STATUS Database::UnreadNotes(std::string_view userUtf8, IdTable* table)
{
    const STATUS status = engine_->ListUnread(userUtf8, [&](uint32_t id) { table->Add(id); });
    table->Sort();
    return status;
}

STATUS Database::FindDesignNote(std::string_view titleUtf8, uint16_t noteClass, uint32_t* id)
{
    return engine_->FindDesign(titleUtf8, noteClass, id);
}

STATUS Database::ChangeTimes(TIMEDATE* data, TIMEDATE* design)
{
    DatabaseInfo info;
    const STATUS status = engine_->ReadInfo(&info);
    if (status != 0)
        return status;
    if (data != nullptr)
        *data = TimeFromHundredths(info.dataStamp);
    if (design != nullptr)
        *design = TimeFromHundredths(info.designStamp);
    return 0;
}

}  // namespace pavex
