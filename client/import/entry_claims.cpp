// client/import/entry_claims.cpp: which sources hold a note, and what becomes of it when they lose it.
#include <optional>
#include <utility>
#include <vector>

#include "client/import/entry_keys.h"
#include "client/import/entry_store.h"

namespace pavex {

// The row by which this source holds the note; makes one when there is none.
bool EntryStore::Claim(const SourceEntry& row, SourceEntry* own)
{
    *own = row;
    if (row.source == source_)
        return true;
    for (int number = 1;; ++number) {
        std::optional<SourceEntry> copy;
        if (!Find(CopyKey(number, row.key), &copy))
            return false;
        if (copy && copy->source == source_) {
            *own = *copy;
            return true;
        }
        if (!copy) {
            *own = {CopyKey(number, row.key), source_, StoredDigestOf(ContentOf(row), std::nullopt), row.noteId};
            return BeginWrite() && Check(database_->PutSource(*own)) && EndWrite();
        }
    }
}

// The last of the further rows of a note; number 0 when there is none.
bool EntryStore::LastCopy(const std::string& key, int* number, SourceEntry* copy)
{
    for (*number = 0;; ++*number) {
        std::optional<SourceEntry> next;
        if (!Find(CopyKey(*number + 1, key), &next))
            return false;
        if (!next)
            return true;
        *copy = *next;
    }
}

// Takes a further row away; the last one fills the gap, so that they stay numbered from 1 on.
bool EntryStore::DropCopy(const std::string& key, const SourceEntry& copy)
{
    int number = 0;
    SourceEntry last;
    if (!LastCopy(key, &number, &last))
        return false;
    if (last.key != copy.key) {
        SourceEntry moved = last;
        moved.key = copy.key;
        if (!Check(database_->PutSource(moved)))
            return false;
    }
    return Check(database_->DeleteSource(last.key));
}

bool EntryStore::ListGone(std::vector<SourceEntry>* gone)
{
    return LoadLiving() && Check(database_->ListSources(source_, [&](const SourceEntry& row) {
               if (!seen_.Has(row.noteId))
                   gone->push_back(row);
               return true;
           }));
}

bool EntryStore::PruneRow(const SourceEntry& row, ImportReport* report)
{
    if (IsCopy(row))
        return DropCopy(OriginalKey(row), row);
    int number = 0;
    SourceEntry heir;
    if (!LastCopy(row.key, &number, &heir))
        return false;
    if (number > 0) {
        const std::string heirKey = std::exchange(heir.key, row.key);
        return Check(database_->PutSource(heir)) && Check(database_->DeleteSource(heirKey));
    }
    if (living_.Has(row.noteId)) {
        if (!Check(UnlessDeleted(database_->Delete(row.noteId))))
            return false;
        ++report->removed;
    }
    return Check(database_->DeleteSource(row.key));
}

bool EntryStore::Prune(ImportReport* report)
{
    std::vector<SourceEntry> gone;
    if (!ListGone(&gone))
        return false;
    for (const SourceEntry& row : gone) {
        // A row that was moved into a gap meanwhile is found again by its key.
        std::optional<SourceEntry> current;
        if (!Find(row.key, &current))
            return false;
        if (!current || current->source != source_)
            continue;
        if (!BeginWrite() || !PruneRow(*current, report) || !EndWrite())
            return false;
    }
    return true;
}

}  // namespace pavex
