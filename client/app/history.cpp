// client/app/history.cpp: which notes were opened, as entries of the history database.
#include "client/app/history.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>
#include <vector>

#include "client/app/note_text.h"
#include "client/import/charset_text.h"
#include "client/store/database.h"
#include "client/store/host.h"
#include "client/store/note_link.h"
#include "client/store/timedate.h"

namespace pavex {

namespace {

// Where an entry comes from: no source that is imported has such a name, so no import takes it away.
constexpr const char* kSource = "pavex open";
constexpr size_t kLongestTitle = 16000;  // bytes, that its item holds with room to spare

std::string HistoryPath()
{
    return CurrentPlaces().data + "/" + kHistoryFile;
}

// The note that holds the entry made before; 0 for none.
uint32_t EntryBefore(Database* database, const std::string& key)
{
    std::optional<SourceEntry> source;
    Note note;
    if (database->FindSource(key, &source) != 0 || !source || database->Get(source->noteId, &note) != 0)
        return 0;
    return source->noteId;
}

STATUS PutEntry(Database* database, const NOTELINK& link, const std::string& title)
{
    if (const STATUS status = database->Begin(); status != 0)
        return status;
    const std::string key = "opened:" + UrlOfNote(link.replica, link.note);
    Note note = HistoryNote(link, Utf8Prefix(title, kLongestTitle));
    note.id = EntryBefore(database, key);
    STATUS status = database->Put(&note);
    if (status == 0)
        status = database->PutSource({key, kSource, "", note.id});
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
