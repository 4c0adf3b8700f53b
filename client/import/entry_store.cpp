// client/import/entry_store.cpp: entries into notes, each once, however often it is read.
#include "client/import/entry_store.h"

#include <map>
#include <utility>

#include "client/store/host.h"

namespace pavex {
namespace {

// A transaction ends after so many writes, or so long: other programs wait ten seconds for their turn.
constexpr uint64_t kWritesATransaction = 4000;
constexpr std::chrono::seconds kLongestTransaction(2);

std::string CopyKey(int number, const std::string& key)
{
    return "copy:" + std::to_string(number) + ":" + key;
}

std::string StoredDigestOf(const std::string& content, std::optional<bool> unread)
{
    return content + (!unread ? ";-" : *unread ? ";unread" : ";read");
}

std::string ContentOf(const SourceEntry& row)
{
    return row.digest.substr(0, row.digest.rfind(';'));
}

// The identity in a row's key: what stands before the digest of a further content.
std::string IdentityOf(const SourceEntry& row)
{
    const std::string suffix = "#" + ContentOf(row);
    return row.key.ends_with(suffix) ? row.key.substr(0, row.key.size() - suffix.size()) : row.key;
}

bool IsCopy(const SourceEntry& row)
{
    return row.key.starts_with("copy:");
}

// The key of the note's own row, from that of a copy.
std::string OriginalKey(const SourceEntry& copy)
{
    return copy.key.substr(copy.key.find(':', 5) + 1);
}

// Of a note that another program deleted while the import ran; the next import sees it gone.
STATUS UnlessDeleted(STATUS status)
{
    return status == kStatusNoteDeleted ? kStatusOk : status;
}

}  // namespace

void NoteIdSet::Add(uint32_t id)
{
    if (id >= bits_.size())
        bits_.resize(id + size_t{1} + bits_.size() / 2);
    bits_[id] = true;
}

bool NoteIdSet::Has(uint32_t id) const
{
    return id < bits_.size() && bits_[id];
}

std::unique_ptr<EntryStore> EntryStore::Open(const std::string& path, const std::string& title, std::string* error)
{
    std::unique_ptr<Database> database;
    if (const STATUS status = Database::OpenOrCreate(path, title, &database); status != 0) {
        *error = path + ": " + DescribeStatus(status);
        return nullptr;
    }
    return std::unique_ptr<EntryStore>(new EntryStore(std::move(database)));
}

EntryStore::EntryStore(std::unique_ptr<Database> database) : database_(std::move(database)), user_(UserName()) {}

EntryStore::~EntryStore()
{
    if (inTransaction_)
        database_->Rollback();
}

bool EntryStore::Check(STATUS status)
{
    if (status != 0 && error_.empty())
        error_ = database_->Path() + ": " + DescribeStatus(status);
    return status == 0;
}

bool EntryStore::BeginWrite()
{
    if (inTransaction_)
        return true;
    if (!Check(database_->Begin()))
        return false;
    inTransaction_ = true;
    writes_ = 0;
    begun_ = std::chrono::steady_clock::now();
    return true;
}

bool EntryStore::EndWrite()
{
    ++writes_;
    const bool due = writes_ >= kWritesATransaction || std::chrono::steady_clock::now() - begun_ >= kLongestTransaction;
    return !due || Commit();
}

bool EntryStore::Commit()
{
    if (!inTransaction_)
        return true;
    inTransaction_ = false;
    const STATUS status = database_->Commit();
    if (status != 0)
        database_->Rollback();
    return Check(status);
}

bool EntryStore::LoadLiving()
{
    if (livingLoaded_)
        return true;
    livingLoaded_ = true;
    return Check(database_->List([this](const NoteSummary& note) {
        living_.Add(note.id);
        return true;
    }));
}

void EntryStore::BeginSource(const std::string& source)
{
    source_ = source;
    seen_.Clear();
    setAside_.clear();
}

bool EntryStore::Find(const std::string& key, std::optional<SourceEntry>* row)
{
    row->reset();
    return Check(database_->FindSource(key, row));
}

// The row of this very content; whether the identity is known with another one.
bool EntryStore::FindContent(const SourceEntryFound& entry, std::optional<SourceEntry>* row, bool* identityKnown)
{
    if (!Find(entry.identity, row))
        return false;
    *identityKnown = row->has_value();
    if (*row && ContentOf(**row) == entry.digest)
        return true;
    return Find(entry.identity + "#" + entry.digest, row);
}

bool EntryStore::Offer(SourceEntryFound entry, ImportReport* report)
{
    // Others wait for the database: a long stretch of unchanged entries must not keep it.
    if (inTransaction_ && std::chrono::steady_clock::now() - begun_ >= kLongestTransaction && !Commit())
        return false;
    std::optional<SourceEntry> row;
    bool identityKnown = false;
    if (!FindContent(entry, &row, &identityKnown))
        return false;
    if (row)
        return TakeKnown(entry, *row, report);
    if (!identityKnown && !inTransaction_) {
        // Another import may have written it since: look again, now that the database is ours.
        return BeginWrite() && Offer(std::move(entry), report);
    }
    if (!identityKnown)
        return WriteNote(entry, entry.identity, 0, report);
    setAside_.push_back(std::move(entry));
    return true;
}

bool EntryStore::TakeKnown(const SourceEntryFound& entry, const SourceEntry& row, ImportReport* report)
{
    if (!LoadLiving())
        return false;
    if (!living_.Has(row.noteId))  // its user deleted the note, and its source still has the entry
        return WriteNote(entry, row.key, 0, report);
    ++report->unchanged;
    if (seen_.Has(row.noteId))
        return true;  // the same message in another mailbox of this source: the first one's flags count
    seen_.Add(row.noteId);
    SourceEntry own;
    return Claim(entry, row, &own) && KeepUnread(entry, std::move(own));
}

// The row by which this source holds the note; makes one when there is none.
bool EntryStore::Claim(const SourceEntryFound& entry, const SourceEntry& row, SourceEntry* own)
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
            *own = {CopyKey(number, row.key), source_, StoredDigestOf(entry.digest, std::nullopt), row.noteId};
            return BeginWrite() && Check(database_->PutSource(*own)) && EndWrite();
        }
    }
}

// Follows the source's flag when it changed there; what the user marked here since stays otherwise.
bool EntryStore::KeepUnread(const SourceEntryFound& entry, SourceEntry own)
{
    const std::string digest = StoredDigestOf(entry.digest, entry.unread);
    if (own.digest == digest)
        return true;
    own.digest = digest;
    if (!BeginWrite() || !Check(database_->PutSource(own)))
        return false;
    if (entry.unread && !Check(UnlessDeleted(database_->SetUnread(user_, own.noteId, *entry.unread))))
        return false;
    return EndWrite();
}

// Makes the note first, which may take long, and only then takes the database's write lock.
bool EntryStore::WriteNote(const SourceEntryFound& entry, const std::string& key, uint32_t replacedId,
                           ImportReport* report)
{
    Note note;
    std::string reason;
    if (!entry.make(&note, &reason)) {
        report->rejected.push_back({source_, entry.where, reason});
        return true;
    }
    if (replacedId != 0) {
        Note old;
        const STATUS status = database_->Get(replacedId, &old);
        if (!Check(UnlessDeleted(status)))
            return false;
        if (status == kStatusOk) {
            note.id = old.id;
            note.unid = old.unid;
            note.sequence = old.sequence;
            note.created = old.created;
        }
    }
    if (!BeginWrite() || !Check(database_->Put(&note)))
        return false;
    const SourceEntry row{key, source_, StoredDigestOf(entry.digest, entry.unread), note.id};
    if (!Check(database_->PutSource(row)))
        return false;
    if (entry.unread && !Check(database_->SetUnread(user_, note.id, *entry.unread)))
        return false;
    ++(replacedId != 0 ? report->updated : report->added);
    seen_.Add(note.id);
    living_.Add(note.id);
    return EndWrite();
}

// A row whose note may take another content: this source alone held it, and holds it no more.
bool EntryStore::Replaceable(const SourceEntry& row, bool* replaceable)
{
    *replaceable = false;
    if (IsCopy(row) || seen_.Has(row.noteId) || !living_.Has(row.noteId))
        return true;
    std::optional<SourceEntry> copy;
    if (!Find(CopyKey(1, row.key), &copy))
        return false;
    *replaceable = !copy.has_value();
    return true;
}

bool EntryStore::ListGone(std::vector<SourceEntry>* gone)
{
    return LoadLiving() && Check(database_->ListSources(source_, [&](const SourceEntry& row) {
               if (!seen_.Has(row.noteId))
                   gone->push_back(row);
               return true;
           }));
}

bool EntryStore::BringInSetAside(bool complete, ImportReport* report)
{
    if (setAside_.empty())
        return true;
    std::vector<SourceEntry> gone;
    if (complete && !ListGone(&gone))
        return false;
    std::multimap<std::string, SourceEntry> goneByIdentity;
    for (SourceEntry& row : gone) {
        bool replaceable = false;
        if (!Replaceable(row, &replaceable))
            return false;
        std::string identity = IdentityOf(row);
        if (replaceable)
            goneByIdentity.emplace(std::move(identity), std::move(row));
    }
    for (const SourceEntryFound& entry : std::exchange(setAside_, {})) {
        std::optional<SourceEntry> row;
        bool identityKnown = false;
        if (!FindContent(entry, &row, &identityKnown))
            return false;
        const std::string key = identityKnown ? entry.identity + "#" + entry.digest : entry.identity;
        const auto old = goneByIdentity.find(entry.identity);
        bool done = false;
        if (row) {
            done = TakeKnown(entry, *row, report);  // twice in this source
        } else if (old == goneByIdentity.end()) {
            done = WriteNote(entry, key, 0, report);
        } else {
            const SourceEntry replaced = old->second;
            goneByIdentity.erase(old);
            const bool first = replaced.key == entry.identity;
            done = WriteNote(entry, first ? replaced.key : key, replaced.noteId, report) &&
                   (first || Check(database_->DeleteSource(replaced.key)));
        }
        if (!done)
            return false;
    }
    return true;
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

bool EntryStore::FinishSource(bool complete, bool prune, ImportReport* report)
{
    return BringInSetAside(complete, report) && (!complete || !prune || Prune(report)) && Commit();
}

}  // namespace pavex
