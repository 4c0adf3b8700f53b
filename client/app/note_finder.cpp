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

// What a search through files met.
struct Findings {
    std::vector<std::string> files;
    std::vector<std::string> unread;  // "PATH: why", folders and databases that could not be looked into
};

// The databases in a folder and those below it, in order of their names.  Links to folders are not followed.
void FindDatabases(const fs::path& folder, Findings* findings)
{
    std::error_code failed;
    std::vector<fs::directory_entry> entries;
    for (fs::directory_iterator entry(folder, failed), end; !failed && entry != end; entry.increment(failed))
        entries.push_back(*entry);
    if (failed && failed != std::errc::no_such_file_or_directory)
        findings->unread.push_back(folder.string() + ": " + failed.message());
    std::ranges::sort(entries);
    for (const fs::directory_entry& entry : entries) {
        std::error_code none;
        if (entry.is_directory(none) && !entry.is_symlink(none))
            FindDatabases(entry.path(), findings);
        else if (entry.path().extension() == ".vlt")
            findings->files.push_back(entry.path().string());
    }
}

Findings DatabaseFiles()
{
    Findings findings;
    for (const Slot& slot : ReadSlots())
        if (std::string path; ResolvePath(ScsFromUtf8(slot.path).c_str(), &path) == 0)
            findings.files.push_back(path);
    Findings others;
    FindDatabases(CurrentPlaces().data, &others);
    for (const std::string& file : others.files)
        if (std::ranges::find(findings.files, file) == findings.files.end())
            findings.files.push_back(file);
    findings.unread = std::move(others.unread);
    return findings;
}

bool IsReplica(const Database& database, const TIMEDATE& id)
{
    return std::memcmp(database.ReplicaId().Innards, id.Innards, sizeof id.Innards) == 0;
}

}  // namespace

std::unique_ptr<Database> FindNote(const NOTELINK& link, Note* note, std::string* error)
{
    *error = "no database here has the replica id " + HexFromId(link.replica);
    Findings findings = DatabaseFiles();
    for (const std::string& file : findings.files) {
        std::unique_ptr<Database> database;
        if (const STATUS status = Database::Open(file, &database); status != 0) {
            if (std::error_code none; fs::exists(file, none))
                findings.unread.push_back(file + ": " + DescribeStatus(status));
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
    if (!findings.unread.empty())
        *error += "; not looked into: " + findings.unread.front();
    if (findings.unread.size() > 1)
        *error += " (and " + std::to_string(findings.unread.size() - 1) + " more)";
    return nullptr;
}

}  // namespace pavex
