// client/app/log_failures.cpp: what the log tells of failed indexing.
// Entries are known by their numbers: their texts are in the user's language.
#include "client/app/log_failures.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "client/store/host.h"

namespace pavex {

namespace {

constexpr std::streamoff kTailBytes = 1 << 20;
constexpr size_t kMostEntries = 3;

constexpr int kNoteNotOpened = 147;  // names the note alone, and is there only with debugging
// These name the database: it cannot be opened, its time or its changed notes cannot be read, its pass was
// interrupted, a note could not be removed.
constexpr int kDatabaseFailures[] = {134, 138, 143, 145, 159};

bool HasWord(const std::string& line, const std::string& word)
{
    std::istringstream words(line);
    for (std::string next; words >> next;)
        if (next == word)
            return true;
    return false;
}

bool TellsOf(const std::string& line, const std::string& database, uint32_t note)
{
    std::istringstream fields(line);
    std::string date;
    std::string time;
    int id = 0;
    if (!(fields >> date >> time >> id))
        return false;
    if (id != kNoteNotOpened)
        return std::ranges::find(kDatabaseFailures, id) != std::end(kDatabaseFailures) &&
               line.find(database) != line.npos;
    char number[16];
    std::snprintf(number, sizeof number, "%X", note);
    return HasWord(line, number);
}

}  // namespace

std::vector<std::string> LastFailures(const std::string& database, uint32_t note)
{
    std::ifstream file(CurrentPlaces().log, std::ios::binary);
    file.seekg(0, std::ios::end);
    const std::streamoff end = file.tellg();
    file.seekg(std::max(end - kTailBytes, std::streamoff{0}));
    std::vector<std::string> entries;
    for (std::string line; std::getline(file, line);)
        if (TellsOf(line, database, note))
            entries.push_back(line);
    if (entries.size() > kMostEntries)
        entries.erase(entries.begin(), entries.end() - kMostEntries);
    return entries;
}

}  // namespace pavex
