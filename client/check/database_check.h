// client/check/database_check.h: the notes of one database, held against the metafiles of its folder.
#pragma once

#include <string>
#include <vector>

#include "client/check/findings.h"
#include "client/check/metafile_folder.h"
#include "client/check/note_fate.h"
#include "client/check/progress_record.h"
#include "client/check/repair.h"
#include "client/store/database.h"
#include "client/store/engine.h"
#include "platform/owner.h"

namespace pavex {

using DatabaseOwner = Owner<DBHANDLE, VLTDbClose>;

// All borrowed.
struct IndexedDatabase {
    const ProgressRecord* record;
    DBHANDLE handle;
    Database* database;
    const IndexSwitches* switches;
};

class DatabaseCheck {
public:
    DatabaseCheck(const IndexedDatabase& indexed, MetafileFolder* folder, Repair* repair, CheckReport* report)
        : indexed_(indexed), folder_(folder), repair_(repair), report_(report)
    {
    }
    // The status says why the notes could not be listed.
    STATUS Run();

private:
    bool IsWaiting(uint32_t id, const NoteRow& row) const;
    void CheckNote(uint32_t id);
    void CheckFiles(const NoteRow& row, const NoteFate& fate, const NoteFiles* files);
    void CheckLeftFiles();
    // True when the note is there, or may be.
    bool MayExist(const NoteFiles& files, std::string* reason);
    void RefuseNote(uint32_t id, STATUS status);
    std::string UrlOf(const UNID& unid) const;

    IndexedDatabase indexed_;
    MetafileFolder* folder_;
    Repair* repair_;
    CheckReport* report_;
    std::vector<Repair::NoteToIndex> again_;
};

// Reports and removes those of a note's files that the bits in `kinds` name.
void RemoveFiles(Finding finding, const MetafileFolder& folder, const NoteFiles& files, uint8_t kinds,
                 const Example& example, Repair* repair, CheckReport* report);

}  // namespace pavex
