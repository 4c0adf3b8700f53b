// client/app/history.cpp: which notes were opened, as entries of the history database.
#include "client/app/history.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>
#include <vector>

#include "client/app/note_text.h"
#include "client/import/bookmark_note.h"
#include "client/import/charset_text.h"
#include "client/import/digest.h"
#include "client/import/entry_keys.h"
#include "client/store/database.h"
#include "client/store/host.h"
#include "client/store/note_link.h"
#include "client/store/timedate.h"

namespace pavex {

namespace {

// Which source an entry that was opened comes from: none that is imported has such a name, so no import takes it away.
constexpr const char* kSource = "pavex open";
constexpr size_t kLongestTitle = 16000;  // bytes, that its item holds with room to spare

std::string HistoryPath()
{
    return CurrentPlaces().data + "/" + kHistoryFile;
}

// Adds kSource to the sources that hold the entry, so that it stays when the bookmark it was made of goes.
STATUS ClaimEntry(Database* database, const SourceEntry& row)
{
    if (row.source == kSource)
        return 0;
    for (int number = 1;; ++number) {
        const std::string key = CopyKey(number, row.key);
        std::optional<SourceEntry> copy;
        if (const STATUS status = database->FindSource(key, &copy); status != 0)
            return status;
        if (copy && copy->source == kSource)
            return 0;
        if (!copy)
            return database->PutSource({key, kSource, StoredDigestOf(ContentOf(row), std::nullopt), row.noteId});
    }
}

// An entry that is there keeps what it says: a bookmark has a title and categories of its own.
STATUS DateAnew(Database* database, const SourceEntry& row, Note entry)
{
    entry.modified = {};
    const STATUS status = database->Put(&entry);
    return status == 0 ? ClaimEntry(database, row) : status;
}

STATUS MakeEntry(Database* database, const std::string& key, Note entry)
{
    const std::string digest = StoredDigestOf(DigestOf(entry), std::nullopt);
    const STATUS status = database->Put(&entry);
    return status == 0 ? database->PutSource({key, kSource, digest, entry.id}) : status;
}

STATUS WriteEntry(Database* database, const NOTELINK& link, const std::string& title)
{
    const std::string key = BookmarkIdentity(UrlOfNote(link.replica, link.note));
    std::optional<SourceEntry> row;
    if (const STATUS status = database->FindSource(key, &row); status != 0)
        return status;
    Note entry;
    if (row && database->Get(row->noteId, &entry) == 0)
        return DateAnew(database, *row, std::move(entry));
    return MakeEntry(database, key, HistoryNote(link, Utf8Prefix(title, kLongestTitle)));
}

STATUS PutEntry(Database* database, const NOTELINK& link, const std::string& title)
{
    STATUS status = database->Begin();
    if (status != 0)
        return status;
    status = WriteEntry(database, link, title);
    if (status == 0)
        return database->Commit();
    database->Rollback();
    return status;
}

}  // namespace

bool RememberInHistory(const NOTELINK& link, const std::string& title, std::string* error)
{
    std::unique_ptr<Database> database;
    STATUS status = Database::OpenOrCreate(HistoryPath(), "History", &database);
    if (status == 0) {
        const TIMEDATE own = database->ReplicaId();
        if (std::memcmp(own.Innards, link.replica.Innards, sizeof own.Innards) == 0)
            return true;
        status = PutEntry(database.get(), link, title);
    }
    if (status != 0)
        *error = HistoryPath() + ": " + DescribeStatus(status);
    return status == 0;
}

bool ListHistory(const std::function<void(const HistoryEntry&)>& callback, std::string* error)
{
    std::error_code none;
    if (!std::filesystem::exists(HistoryPath(), none))
        return true;
    std::unique_ptr<Database> database;
    std::vector<HistoryEntry> entries;
    STATUS status = Database::Open(HistoryPath(), &database);
    if (status == 0)
        status = database->List([&](const NoteSummary& summary) {
            Note note;
            if (database->Get(summary.id, &note) != 0)
                return true;
            if (const std::optional<NOTELINK> link = LinkOfHistoryNote(note))
                entries.push_back({FirstText(note, "Title"), UrlOfNote(link->replica, link->note), summary.modified});
            return true;
        });
    if (status != 0) {
        *error = HistoryPath() + ": " + DescribeStatus(status);
        return false;
    }
    std::ranges::stable_sort(entries, [](const HistoryEntry& a, const HistoryEntry& b) {
        return HundredthsOf(a.opened) > HundredthsOf(b.opened);
    });
    std::ranges::for_each(entries, callback);
    return true;
}

}  // namespace pavex
