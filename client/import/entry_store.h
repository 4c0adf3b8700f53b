// client/import/entry_store.h: a database as the target of an import: which entry is which note.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "client/import/importer.h"
#include "client/import/source_reader.h"
#include "client/store/database.h"

namespace pavex {

// A set of note ids; ids are handed out one after the other, so a bit each is little.
class NoteIdSet {
public:
    void Add(uint32_t id);
    bool Has(uint32_t id) const;
    void Clear() { bits_.clear(); }

private:
    std::vector<bool> bits_;
};

// Each note made from an entry has a row: its key is the identity, and for further contents of one identity
// (two messages under one Message-ID) the identity, "#" and the digest.  The row names the source it was
// read from; further sources that hold the same content have rows of their own ("copy:1:KEY"), so that a
// note goes only when its last source has lost it.  Of entries with a revision the digest begins with it.
// Methods return false when the database fails; Error() then says how.
class EntryStore {
public:
    // Opens or creates the database.  Null with *error set when that fails.
    static std::unique_ptr<EntryStore> Open(const std::string& path, const std::string& title, std::string* error);
    ~EntryStore();

    void BeginSource(const std::string& source);
    // Brings one entry in.  What of its identity is known with another content is set aside until the source was
    // read: only then is it clear whether the old content is gone (an update) or still there.  Set aside means that
    // the source is read a second time, rather than that any number of entries is kept.
    bool Offer(SourceEntryFound entry, ImportReport* report);
    uint64_t SetAside() const { return setAside_; }
    // Brings one entry of the second reading in, where the first one set it aside.
    bool OfferAgain(const SourceEntryFound& entry, ImportReport* report);
    // Keeps what is held of an entry whose present version is none.
    bool KeepHeld(const std::string& identity);
    // With prune deletes what the source no longer holds.
    //   complete  the whole source was read; otherwise nothing counts as gone.
    bool FinishSource(bool complete, bool prune, ImportReport* report);
    // Writes what is pending.
    bool Commit();
    const std::string& Error() const { return error_; }

private:
    explicit EntryStore(std::unique_ptr<Database> database);
    bool Check(STATUS status);
    bool Find(const std::string& key, std::optional<SourceEntry>* row);
    bool FindContent(const SourceEntryFound& entry, std::optional<SourceEntry>* row, bool* identityKnown);
    bool LetOthersWrite();
    bool BeginWrite();
    bool EndWrite();
    bool LoadLiving();
    bool Claim(const SourceEntry& row, SourceEntry* own);
    bool LastCopy(const std::string& key, int* number, SourceEntry* copy);
    bool KeepUnread(const SourceEntryFound& entry, SourceEntry own);
    bool WriteNote(const SourceEntryFound& entry, const SourceEntry& target, ImportReport* report,
                   const std::string& droppedKey = {});
    void See(uint32_t id);
    bool WriteForm(const FormDefinition& form);
    bool BringIn(SourceEntryFound entry, ImportReport* report);
    bool Renew(const SourceEntryFound& entry, ImportReport* report);
    bool TakeKnown(const SourceEntryFound& entry, const SourceEntry& row, ImportReport* report);
    bool FindReplaceable(const std::string& identity, std::optional<SourceEntry>* replaced);
    bool ListGone(std::vector<SourceEntry>* gone);
    bool Prune(ImportReport* report);
    bool PruneRow(const SourceEntry& row, ImportReport* report);
    bool DropCopy(const std::string& key, const SourceEntry& copy);
    bool Replaceable(const SourceEntry& row, bool* replaceable);

    std::unique_ptr<Database> database_;
    std::string user_;    // whose unread marks are kept
    std::string source_;  // being read
    std::string error_;
    NoteIdSet seen_;    // notes whose entry the source still holds
    NoteIdSet read_;    // notes whose entry was met in this import, in whichever source
    NoteIdSet living_;  // notes that are there; users delete notes without asking the importer
    bool livingLoaded_ = false;
    std::set<const FormDefinition*> forms_;    // that the database is known to hold
    uint64_t setAside_ = 0;                    // entries of this source
    std::unordered_set<std::string> settled_;  // identities none of whose rows can be replaced any more
    bool inTransaction_ = false;
    uint64_t writes_ = 0;  // in the transaction
    std::chrono::steady_clock::time_point begun_;
};

}  // namespace pavex
