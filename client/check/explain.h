// client/check/explain.h: why a note is findable, or is not.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/check/metafile_state.h"
#include "client/check/note_fate.h"
#include "client/check/progress_record.h"
#include "platform/store.h"

namespace pavex {

enum class NoteState { kLive, kDeleted, kNoDocument, kDamaged };

// What is known of a note and its metafiles.
struct NoteFacts {
    std::string database;  // native path
    std::string url;
    uint32_t id = 0;
    UNID unid{};
    std::string damage;  // of a damaged note, in words that follow a colon
    NoteState state = NoteState::kLive;
    bool isSealed = false;                   // and its sealed items are not read
    NoteFate fate{};                         // of a live document
    std::optional<ProgressRecord> record{};  // none: the database is not indexed
    bool isWaiting = false;
    MetafileState file{FileState::kMissing, {}};  // of the kind that the note is
    const SearchKind* found = nullptr;            // the kind of the file that the search finds; null without one
    std::string path;                             // of that file, or where one would be; empty when none would
    std::string obstacle;                         // to writing it, as FindWriteObstacle has it
};

// Gathers what is known of a note of a database.
//   id  of a note or of what is left of one.
// The status says why the database could not be opened, or that there is no such note (551).
STATUS GatherNoteFacts(const std::string& database, uint32_t id, const std::string& metadata, NoteFacts* facts);

// What else counts.
struct SearchFacts {
    std::string whyNoPass;           // why nothing is indexed at all, a clause; empty: it is
    std::string engineLog{};         // native path
    std::optional<bool> isInEngine;  // whether the search engine has the note's metafile; none: it cannot tell
    std::string whyUnknown{};        // why not, a clause
};

struct Explanation {
    bool isFindable = false;
    std::string reason;  // its name, for JSON
    std::string text;    // sentences, the verdict first
};
Explanation Explain(const NoteFacts& facts, const SearchFacts& search);

}  // namespace pavex
