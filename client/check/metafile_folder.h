// client/check/metafile_folder.h: what lies in the metadata folder, by name.
// Nothing is opened, and no symbolic link is followed.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "client/search/kinds.h"
#include "platform/store.h"

namespace pavex {

// The metafiles of one note: a bit a kind, in the order of kSearchKinds.
struct NoteFiles {
    UNID unid{};
    uint8_t kinds = 0;
    bool isSeen = false;
};

// One database's folder.
struct MetafileFolder {
    std::string path;
    std::vector<NoteFiles> notes;          // by ascending UNID
    std::vector<std::string> halfWritten;  // paths of files that a killed writer left
    std::vector<std::string> strays;       // paths of files that end as metafiles do and are no note's

    NoteFiles* Find(const UNID& unid);
    // The note's file of a kind, whether it is there or not.
    std::string FileOf(const UNID& unid, const SearchKind& kind) const;
};

// Reads a folder; one that is not there is empty.  False, with *error saying why, when it cannot be read.
bool ReadMetafileFolder(const std::string& path, MetafileFolder* folder, std::string* error);

// What lies in the metadata folder itself.
struct MetadataRoot {
    std::vector<std::string> replicas;  // names of folders that may be a database's
    std::vector<std::string> strays;    // as above, also in folders that cannot be a database's
};
bool ReadMetadataRoot(const std::string& path, MetadataRoot* root, std::string* error);

}  // namespace pavex
