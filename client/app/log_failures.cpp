// client/app/log_failures.cpp: what the log tells of failed indexing.
// Entries are known by their numbers: their texts are in the user's language.
#include "client/app/log_failures.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "client/store/host.h"

namespace pavex {

namespace {

constexpr std::streamoff kTailBytes = 1 << 20;
constexpr size_t kMostEntries = 3;

constexpr int kOpened = 135;         // a pass over a database begins
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

// Goes through the entries in order: a note's number says which note only together with the pass that met it.
class FailureReader {
public:
    FailureReader(const std::string& database, uint32_t note) : database_(database)
    {
        std::ostringstream number;
        number << std::uppercase << std::hex << note;
        note_ = number.str();
    }

    // True when the entry tells of a failure of the database or the note.
    bool Tells(const std::string& line)
    {
        std::istringstream fields(line);
        std::string date;
        std::string time;
        int id = 0;
        if (!(fields >> date >> time >> id))
            return false;
        const bool isOfDatabase = line.find(database_) != line.npos;
        if (id == kOpened)
            isInPass_ = isOfDatabase;
        if (id == kNoteNotOpened)
            return isInPass_ && HasWord(line, note_);
        return isOfDatabase && std::ranges::find(kDatabaseFailures, id) != std::end(kDatabaseFailures);
    }

private:
    const std::string database_;
    std::string note_;
    bool isInPass_ = true;  // before the first pass whose beginning is there it may be any
};

}  // namespace

std::vector<std::string> LastFailures(const std::string& database, uint32_t note)
{
    std::ifstream file(CurrentPlaces().log, std::ios::binary);
    file.seekg(0, std::ios::end);
    const std::streamoff end = file.tellg();
    file.seekg(std::max(end - kTailBytes, std::streamoff{0}));
    FailureReader reader(database, note);
    std::vector<std::string> entries;
    for (std::string line; std::getline(file, line);)
        if (reader.Tells(line))
            entries.push_back(line);
    if (entries.size() > kMostEntries)
        entries.erase(entries.begin(), entries.end() - kMostEntries);
    return entries;
}

}  // namespace pavex
