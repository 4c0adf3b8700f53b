// client/app/unindexed_targets.cpp: watched sources that are read into databases that nobody indexes.
#include "client/app/unindexed_targets.h"

#include <filesystem>
#include <set>

#include "client/app/command.h"
#include "client/app/slots.h"
#include "client/store/charset.h"
#include "client/store/path.h"
#include "client/store/shell_word.h"

namespace pavex {

namespace {

std::set<std::string> IndexedDatabases()
{
    std::set<std::string> paths;
    for (const Slot& slot : ReadSlots())
        if (std::string path; ResolvePath(ScsFromUtf8(slot.path).c_str(), &path) == 0)
            paths.insert(path);
    return paths;
}

std::set<std::string> TargetsOf(const WatchedSource& source, const ReadRecords& records)
{
    if (const std::string into = DatabaseOf(source); !into.empty())
        return {into};
    const auto record = records.find(source.path);
    return record != records.end() ? record->second.databases : std::set<std::string>();
}

}  // namespace

std::vector<std::string> TellUnindexedTargets(const WatchList& list, const ReadRecords& records)
{
    std::set<std::string> told = IndexedDatabases();
    std::vector<std::string> lines;
    std::error_code none;
    for (const WatchListEntry& entry : list.entries)
        for (const std::string& target : TargetsOf(entry.source, records))
            if (std::filesystem::exists(target, none) && told.insert(target).second)
                lines.push_back(entry.source.path + " is read into " + target +
                                ", which is not among the indexed databases; add it with: pavex settings --add " +
                                ShellWord(DatabaseName(target)));
    return lines;
}

}  // namespace pavex
