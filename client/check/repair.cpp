// client/check/repair.cpp: puts right what a check found.
#include "client/check/repair.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "client/store/host.h"

namespace pavex {

namespace {

// Others may write meanwhile.
constexpr size_t kNotesPerTransaction = 1000;

}  // namespace

bool Repair::Remove(const std::string& path)
{
    if (std::remove(path.c_str()) == 0 || errno == ENOENT)
        return true;
    if (!hasTold_)
        report_->AddRemark(path + " cannot be removed: " + std::strerror(errno));
    hasTold_ = true;
    return false;
}

void Repair::RemoveFile(Finding finding, const std::string& path)
{
    if (isWanted_ && Remove(path))
        report_->AddRepaired(finding);
}

bool Repair::MakeRoom(const std::string& path)
{
    struct stat about {};
    return !isWanted_ || lstat(path.c_str(), &about) != 0 || S_ISREG(about.st_mode) || Remove(path);
}

bool Repair::Empty(const ProgressRecord& record)
{
    if (SetVariable(record.variable, ""))
        return true;
    (void)TakeFailedWrite();  // told here
    report_->AddRemark(record.variable + " cannot be emptied: " + CurrentPlaces().ini + " cannot be written");
    return false;
}

void Repair::EmptyRecord(Finding finding, const ProgressRecord& record)
{
    if (isWanted_ && Empty(record))
        report_->AddRepaired(finding);
}

// Each note that was touched counts as repaired.  False, with the status, for the first that could not be.
bool Repair::Touch(Database& database, const std::vector<NoteToIndex>& notes, STATUS* status)
{
    for (size_t begin = 0; begin < notes.size(); begin += kNotesPerTransaction) {
        const size_t end = std::min(begin + kNotesPerTransaction, notes.size());
        *status = database.Begin();
        for (size_t i = begin; i < end && *status == 0; ++i) {
            *status = database.Touch(notes[i].id);
            if (*status == kStatusNoteDeleted)
                *status = 0;  // since the check looked: the deletion is in the next pass
        }
        if (*status == 0)
            *status = database.Commit();
        if (*status != 0) {
            database.Rollback();
            return false;
        }
        for (size_t i = begin; i < end; ++i)
            report_->AddRepaired(notes[i].finding);
    }
    return true;
}

void Repair::IndexAgain(Database& database, const ProgressRecord& record, const std::vector<NoteToIndex>& notes)
{
    if (!isWanted_ || notes.empty())
        return;
    const uint64_t before = report_->Repaired();
    STATUS status = 0;
    if (Touch(database, notes, &status))
        return;
    report_->AddRemark(database.Path() +
                       " is indexed from its beginning, since its notes cannot be marked: " + DescribeStatus(status));
    if (Empty(record))
        for (size_t i = report_->Repaired() - before; i < notes.size(); ++i)
            report_->AddRepaired(notes[i].finding);
}

}  // namespace pavex
