// client/watch/read_records.h: when each watched source was read, for those who ask: watched.json.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace pavex {

struct ReadRecord {
    std::string read;       // when its last whole or partial reading that succeeded began, "2026-11-22T06:45:00Z"
    std::string error;      // why the last reading failed; empty when it did not
    uint64_t rejected = 0;  // entries of the last whole reading that did not come in
    std::set<std::string> databases = {};  // native paths of those that it was read into, by any reading
    bool operator==(const ReadRecord&) const = default;
};
using ReadRecords = std::map<std::string, ReadRecord>;  // by the source's path, as it is listed

// None when the file is not there or cannot be read: it is told anew with the next reading.
ReadRecords LoadReadRecords(const std::string& dataDirectory);
// False, with errno, when the file cannot be replaced.
bool SaveReadRecords(const std::string& dataDirectory, const ReadRecords& records);

}  // namespace pavex
