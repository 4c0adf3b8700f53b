// client/check/metafile_state.h: one note's metafile, held against the note.
#pragma once

#include <string>

#include "client/check/metafile_folder.h"
#include "client/search/kinds.h"
#include "client/store/engine.h"

namespace pavex {

enum class FileState { kGood, kMissing, kOutdated, kDamaged };

struct MetafileState {
    FileState state = FileState::kGood;
    std::string reason;  // in words that follow the file's name and a colon; empty when good or missing
};

// The note's file of the kind that it is.
//   row  of the note; its items are not looked at.
//   url  of the note.
MetafileState StateOfMetafile(const std::string& path, const SearchKind& kind, const NoteRow& row,
                              const std::string& url);

}  // namespace pavex
