// client/check/repair.h: puts right what a check found.
// The add-in itself writes metafiles: a repair has it look at a note again, by a new change stamp, or at a whole
// database, by emptying its progress record.  Metafiles that no pass would ever remove are removed here.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "client/check/findings.h"
#include "client/check/progress_record.h"
#include "client/store/database.h"

namespace pavex {

class Repair {
public:
    // isWanted: without, nothing is done.  report: borrowed; takes what was repaired, and why something was not.
    Repair(bool isWanted, CheckReport* report) : isWanted_(isWanted), report_(report) {}

    bool IsWanted() const { return isWanted_; }

    // Removes a file of the metadata folder: a link itself, a folder only when it is empty.
    void RemoveFile(Finding finding, const std::string& path);
    // What lies at a metafile's place and is no file goes, so that one can be written there.  False when it cannot.
    bool MakeRoom(const std::string& path);
    // The next pass begins at the beginning of the record's database; the record of a slot without one is gone.
    void EmptyRecord(Finding finding, const ProgressRecord& record);

    struct NoteToIndex {
        uint32_t id;
        Finding finding;
    };
    // Has the notes indexed by the next pass.  A database that cannot be written is indexed as a whole.
    void IndexAgain(Database& database, const ProgressRecord& record, const std::vector<NoteToIndex>& notes);

private:
    bool Touch(Database& database, const std::vector<NoteToIndex>& notes, STATUS* status);
    bool Empty(const ProgressRecord& record);
    bool Remove(const std::string& path);

    bool isWanted_;
    CheckReport* report_;
    bool hasTold_ = false;  // of a file that cannot be removed: the others are in the counts
};

}  // namespace pavex
