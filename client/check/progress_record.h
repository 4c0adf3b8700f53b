// client/check/progress_record.h: the slots of the ini file, read with an eye to what is wrong with them.
// docs/formats/progress.md describes them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/store.h"

namespace pavex {

struct ProgressRecord {
    int slot = 0;
    std::string path;                 // of the database, UTF-8; empty: the slot is free
    std::string variable;             // that holds the record
    std::string text{};               // the record; empty: nothing is indexed
    std::string damage{};             // why it is no record that a pass writes; empty: it is one
    uint64_t since = 0;               // every change up to this stamp is indexed
    std::optional<uint64_t> until{};  // end of an interrupted pass ...
    uint32_t resumeNote = 0;          // ... which goes on at this note

    bool IsHistory() const;
    // True when a coming pass takes the note: it changed since what the record covers.
    bool IsWaiting(uint32_t note, uint64_t stamp) const;
};

// Every slot with a path or a record, in order.
std::vector<ProgressRecord> ReadProgressRecords();

}  // namespace pavex
