// client/import/entry_store.cpp: entries into notes, each once, however often it is read.
#include "client/import/entry_store.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "client/import/entry_keys.h"
#include "client/store/host.h"
#include "client/store/timedate.h"

namespace pavex {
namespace {

// A transaction ends after so many writes, or so long: other programs wait ten seconds for their turn.
constexpr uint64_t kWritesATransaction = 4000;
constexpr std::chrono::seconds kLongestTransaction(2);

std::string TextOfRevision(const Revision& revision)
{
    return std::to_string(revision.sequence) + "/" + revision.changed + "@";
}

Revision RevisionOf(const SourceEntry& row)
{
    Revision revision;
    const size_t slash = row.digest.find('/');
    const size_t at = row.digest.find('@');
    if (slash == std::string::npos || at == std::string::npos || at < slash)
        return revision;
    std::from_chars(row.digest.data(), row.digest.data() + slash, revision.sequence);
    revision.changed = row.digest.substr(slash + 1, at - slash - 1);
    return revision;
}

std::string WithoutRevision(const std::string& content)
{
    return content.substr(content.find('@') + 1);
}

}  // namespace

bool IsOlder(const Revision& a, const Revision& b)
{
    if (a.sequence != b.sequence)
        return a.sequence < b.sequence;
    return !a.changed.empty() && !b.changed.empty() && a.changed < b.changed;
}

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

// Others wait for the database: a long stretch of unchanged entries must not keep it.
bool EntryStore::LetOthersWrite()
{
    return !inTransaction_ || std::chrono::steady_clock::now() - begun_ < kLongestTransaction || Commit();
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
    setAside_ = 0;
    settled_.clear();
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
    if (!LetOthersWrite())
        return false;
    if (entry.revision)
        entry.digest.insert(0, TextOfRevision(*entry.revision));
    return BringIn(std::move(entry), report);
}

bool EntryStore::BringIn(SourceEntryFound entry, ImportReport* report)
{
    std::optional<SourceEntry> row;
    bool identityKnown = false;
    if (!FindContent(entry, &row, &identityKnown))
        return false;
    if (row)
        return TakeKnown(entry, *row, report);
    if (!identityKnown && !inTransaction_) {
        // Another import may have written it since: look again, now that the database is ours.
        return BeginWrite() && BringIn(std::move(entry), report);
    }
    if (!identityKnown)
        return WriteNote(entry, {entry.identity, source_, {}, 0}, report);
    if (entry.revision)
        return Renew(entry, report);
    ++setAside_;
    return true;
}

bool EntryStore::TakeKnown(const SourceEntryFound& entry, const SourceEntry& row, ImportReport* report)
{
    if (!LoadLiving())
        return false;
    if (!living_.Has(row.noteId))  // its user deleted the note, and its source still has the entry
        return WriteNote(entry, {row.key, source_, {}, 0}, report);
    ++report->unchanged;
    read_.Add(row.noteId);
    if (seen_.Has(row.noteId))
        return true;  // the same message in another mailbox of this source: the first one's flags count
    See(row.noteId);
    SourceEntry own;
    return Claim(row, &own) && KeepUnread(entry, std::move(own));
}

// Another version of what is held: the older one is passed over.  So is an equally new one beside one that was met
// in this import, or two such files would change the note for ever; it is reported, since it may be meant
// as an entry of its own.
bool EntryStore::Renew(const SourceEntryFound& entry, ImportReport* report)
{
    std::optional<SourceEntry> held;
    if (!LoadLiving() || !Find(entry.identity, &held) || !held)
        return false;
    if (!living_.Has(held->noteId))
        return WriteNote(entry, {held->key, source_, {}, 0}, report);
    const Revision heldRevision = RevisionOf(*held);
    const bool newer = IsOlder(heldRevision, *entry.revision);
    const bool older = IsOlder(*entry.revision, heldRevision);
    const bool settled = older || (!newer && read_.Has(held->noteId));
    const bool same = WithoutRevision(ContentOf(*held)) == WithoutRevision(entry.digest);
    SourceEntry own;
    if (!settled && !same)
        return WriteNote(entry, *held, report) && Claim(*held, &own);
    if (older || same)
        ++report->unchanged;
    else
        report->rejected.push_back(
            {source_, entry.where, "is another version of an entry that was read before, and no newer one"});
    See(held->noteId);
    if (settled)
        return Claim(*held, &own);
    // Some programs number or date a version anew that says the same.
    held->digest = StoredDigestOf(entry.digest, entry.unread);
    return BeginWrite() && Check(database_->PutSource(*held)) && EndWrite() && Claim(*held, &own);
}

void EntryStore::See(uint32_t id)
{
    seen_.Add(id);
    read_.Add(id);
}

bool EntryStore::KeepHeld(const std::string& identity)
{
    std::vector<SourceEntry> rows;
    if (!Check(database_->SourcesOf(identity, &rows)))
        return false;
    for (const SourceEntry& row : rows)
        seen_.Add(row.noteId);
    return true;
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
//   target      the row to write: its key, its source and the note to replace (0: a new one).
//   droppedKey  the row that the note had before; empty: the same one, or none.
bool EntryStore::WriteNote(const SourceEntryFound& entry, const SourceEntry& target, ImportReport* report,
                           const std::string& droppedKey)
{
    Note note;
    std::string reason;
    if (!entry.make(&note, &reason)) {
        report->rejected.push_back({source_, entry.where, reason});
        seen_.Add(target.noteId);  // what is held of it stays
        return true;
    }
    if (target.noteId != 0) {
        Note old;
        const STATUS status = database_->Get(target.noteId, &old);
        if (!Check(UnlessDeleted(status)))
            return false;
        if (status == kStatusOk) {
            note.id = old.id;
            note.unid = old.unid;
            note.sequence = old.sequence;
            note.created = old.created;
            const bool isDated = HundredthsOf(note.modified) != 0;  // or else it is of now
            if (entry.kind == EntryKind::kHistory && isDated &&
                HundredthsOf(old.modified) > HundredthsOf(note.modified))
                note.modified = old.modified;  // when what it leads to was opened last
        }
    }
    if (!BeginWrite() || (entry.form != nullptr && !WriteForm(*entry.form)) || !Check(database_->Put(&note)))
        return false;
    const SourceEntry row{target.key, target.source, StoredDigestOf(entry.digest, entry.unread), note.id};
    if (!Check(database_->PutSource(row)) || (!droppedKey.empty() && !Check(database_->DeleteSource(droppedKey))))
        return false;
    if (entry.unread && !Check(database_->SetUnread(user_, note.id, *entry.unread)))
        return false;
    ++(target.noteId != 0 ? report->updated : report->added);
    if (!entry.notice.empty())
        report->notices.push_back({source_, entry.where, entry.notice});
    See(note.id);
    living_.Add(note.id);
    return EndWrite();
}

// The form belongs to no source: nothing prunes it.
bool EntryStore::WriteForm(const FormDefinition& form)
{
    const std::string key = std::string("form:") + form.name;
    std::optional<SourceEntry> row;
    if (forms_.contains(&form))
        return true;
    if (!Find(key, &row))
        return false;
    forms_.insert(&form);
    Note note;
    if (row) {
        const STATUS status = database_->Get(row->noteId, &note);
        if (status == kStatusOk && row->digest == form.windowTitle)
            return true;
        if (!Check(UnlessDeleted(status)))
            return false;
        if (status != kStatusOk)
            note = {};
    }
    note.noteClass = kClassForm;
    note.items = {TextItem("$Title", form.name), FormulaItem("$WindowTitle", form.windowTitle)};
    return Check(database_->Put(&note)) && Check(database_->PutSource({key, {}, form.windowTitle, note.id}));
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

// The row of an earlier content of the identity that this source held and holds no more; nothing when there is none.
bool EntryStore::FindReplaceable(const std::string& identity, std::optional<SourceEntry>* replaced)
{
    // Thousands of entries may share a name for an identity, and what was brought in once is not replaced.
    if (settled_.contains(identity))
        return true;
    std::vector<SourceEntry> rows;
    if (!LoadLiving() || !Check(database_->SourcesOf(identity, &rows)))
        return false;
    for (const SourceEntry& row : rows) {
        bool replaceable = false;
        if (row.source != source_ || IdentityOf(row) != identity)
            continue;
        if (!Replaceable(row, &replaceable))
            return false;
        if (replaceable) {
            *replaced = row;
            return true;
        }
    }
    settled_.insert(identity);
    return true;
}

bool EntryStore::OfferAgain(const SourceEntryFound& entry, ImportReport* report)
{
    std::optional<SourceEntry> known;
    bool identityKnown = false;
    if (entry.revision)
        return true;
    if (!LetOthersWrite() || !FindContent(entry, &known, &identityKnown))
        return false;
    if (known || !identityKnown)
        return true;  // the first reading settled it, or reported it
    std::optional<SourceEntry> old;
    if (!FindReplaceable(entry.identity, &old))
        return false;
    setAside_ -= std::min<uint64_t>(setAside_, 1);
    const std::string key = entry.identity + "#" + entry.digest;
    if (!old)
        return WriteNote(entry, {key, source_, {}, 0}, report);
    if (old->key == entry.identity)
        return WriteNote(entry, {old->key, source_, {}, old->noteId}, report);
    return WriteNote(entry, {key, source_, {}, old->noteId}, report, old->key);
}

bool EntryStore::FinishSource(bool complete, bool prune, ImportReport* report)
{
    report->unchanged += std::exchange(setAside_, 0);  // contents that stand in the source more than once
    return (!complete || !prune || Prune(report)) && Commit();
}

}  // namespace pavex
