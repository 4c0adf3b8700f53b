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

std::vector<std::string> DatabaseFiles()
{
    std::vector<std::string> files;
    for (const Slot& slot : ReadSlots())
        if (std::string path; ResolvePath(ScsFromUtf8(slot.path).c_str(), &path) == 0)
            files.push_back(path);
    std::vector<std::string> others;
    std::error_code failed;
    for (fs::recursive_directory_iterator entry(CurrentPlaces().data, failed), end; !failed && entry != end;
         entry.increment(failed))
        if (entry->path().extension() == ".vlt")
            others.push_back(entry->path().string());
    std::ranges::sort(others);
    for (const std::string& file : others)
        if (std::ranges::find(files, file) == files.end())
            files.push_back(file);
    return files;
}

bool IsReplica(const Database& database, const TIMEDATE& id)
{
    return std::memcmp(database.ReplicaId().Innards, id.Innards, sizeof id.Innards) == 0;
}

}  // namespace

std::unique_ptr<Database> FindNote(const NOTELINK& link, Note* note, std::string* error)
{
    *error = "no database here has the replica id " + HexFromId(link.replica);
    for (const std::string& file : DatabaseFiles()) {
        std::unique_ptr<Database> database;
        if (Database::Open(file, &database) != 0 || !IsReplica(*database, link.replica))
            continue;
        database->Unseal();
        const std::optional<uint32_t> id = database->FindUnid(link.note);
        const STATUS status = id ? database->Get(*id, note) : STATUS{kStatusNoteDeleted};
        if (status == 0)
            return database;
        *error = id ? DescribeStatus(status) : "the note is deleted, or was never in " + file;
    }
    return nullptr;
}

}  // namespace pavex
