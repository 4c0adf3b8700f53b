// client/app/note_finder.cpp: from a link to the note it leads to.
#include "client/app/note_finder.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <vector>

#include "client/app/slots.h"
#include "client/store/charset.h"
#include "client/store/host.h"
#include "client/store/path.h"
#include "client/store/timedate.h"

namespace pavex {

namespace {

namespace fs = std::filesystem;

// The databases in a folder and those below it, in order of their names.  Links to folders are not followed.
void FindDatabases(const fs::path& folder, KnownDatabases* known)
{
    std::error_code failed;
    std::vector<fs::directory_entry> entries;
    for (fs::directory_iterator entry(folder, failed), end; !failed && entry != end; entry.increment(failed))
        entries.push_back(*entry);
    if (failed && failed != std::errc::no_such_file_or_directory)
        known->unread.push_back(folder.string() + ": " + failed.message());
    std::ranges::sort(entries);
    for (const fs::directory_entry& entry : entries) {
        std::error_code none;
        if (entry.is_directory(none) && !entry.is_symlink(none))
            FindDatabases(entry.path(), known);
        else if (entry.path().extension() == ".vlt")
            known->files.push_back(entry.path().string());
    }
}

}  // namespace

bool IsReplica(const Database& database, const TIMEDATE& id)
{
    return std::memcmp(database.ReplicaId().Innards, id.Innards, sizeof id.Innards) == 0;
}

KnownDatabases FindKnownDatabases()
{
    KnownDatabases known;
    for (const Slot& slot : ReadSlots())
        if (std::string path; ResolvePath(ScsFromUtf8(slot.path).c_str(), &path) == 0)
            known.files.push_back(path);
    KnownDatabases others;
    FindDatabases(CurrentPlaces().data, &others);
    for (const std::string& file : others.files)
        if (std::ranges::find(known.files, file) == known.files.end())
            known.files.push_back(file);
    known.unread = std::move(others.unread);
    return known;
}

std::string NotLookedInto(const KnownDatabases& known)
{
    if (known.unread.empty())
        return {};
    const size_t more = known.unread.size() - 1;
    return "; not looked into: " + known.unread.front() +
           (more == 0 ? std::string() : " (and " + std::to_string(more) + " more)");
}

std::unique_ptr<Database> FindNote(const NOTELINK& link, Note* note, std::string* error)
{
    *error = "no database here has the replica id " + HexFromId(link.replica);
    KnownDatabases known = FindKnownDatabases();
    for (const std::string& file : known.files) {
        std::unique_ptr<Database> database;
        if (const STATUS status = Database::Open(file, &database); status != 0) {
            if (std::error_code none; fs::exists(file, none))
                known.unread.push_back(file + ": " + DescribeStatus(status));
            continue;
        }
        if (!IsReplica(*database, link.replica))
            continue;
        database->Unseal();
        const std::optional<uint32_t> id = database->FindUnid(link.note);
        const STATUS status = id ? database->Get(*id, note) : STATUS{kStatusNoteDeleted};
        if (status == 0)
            return database;
        *error = id ? DescribeStatus(status) : "the note is deleted, or was never in " + file;
    }
    *error += NotLookedInto(known);
    return nullptr;
}

}  // namespace pavex
