// client/check/database_check.cpp: the notes of one database, held against the metafiles of its folder.
#include "client/check/database_check.h"

#include "client/check/metafile_state.h"
#include "client/store/id_table.h"
#include "client/store/note_link.h"

namespace pavex {

namespace {

using NoteOwner = Owner<NOTEHANDLE, VLTNoteClose>;

constexpr Finding FindingOf(FileState state)
{
    switch (state) {
    case FileState::kMissing:
        return Finding::kMissing;
    case FileState::kOutdated:
        return Finding::kOutdated;
    case FileState::kGood:
    case FileState::kDamaged:
        break;
    }
    return Finding::kDamagedFile;
}

}  // namespace

void RemoveFiles(Finding finding, const MetafileFolder& folder, const NoteFiles& files, uint8_t kinds,
                 const Example& example, Repair* repair, CheckReport* report)
{
    for (size_t i = 0; i < kSearchKinds.size(); ++i) {
        if ((files.kinds & kinds & (1U << i)) == 0)
            continue;
        Example found = example;
        found.file = folder.FileOf(files.unid, kSearchKinds[i]);
        report->Add(finding, found);
        repair->RemoveFile(finding, found.file);
    }
}

STATUS DatabaseCheck::Run()
{
    IdTable table;
    TIMEDATE until{};
    // As a pass from the beginning lists them.
    const STATUS status = indexed_.database->ModifiedNotes(kClassDocument, TIMEDATE{}, &until, &table);
    if (status != 0 && status != kStatusNothingModified)
        return status;
    (void)table.Visit([this](NOTEID id) {
        if ((id & kDeletionBit) == 0)
            CheckNote(id);
        return kStatusOk;
    });
    CheckLeftFiles();
    repair_->IndexAgain(*indexed_.database, *indexed_.record, again_);
    return 0;
}

std::string DatabaseCheck::UrlOf(const UNID& unid) const
{
    return UrlOfNote(indexed_.database->ReplicaId(), unid);
}

void DatabaseCheck::RefuseNote(uint32_t id, STATUS status)
{
    if (status == kStatusNoteDeleted || status == kStatusNoSuchNote)
        return;  // meanwhile
    report_->Add(Finding::kDamagedNote,
                 {.database = indexed_.record->path, .note = id, .reason = DescribeStatus(status)});
}

// No pass comes to a history that is not indexed.
bool DatabaseCheck::IsWaiting(uint32_t id, const NoteRow& row) const
{
    return indexed_.record->IsWaiting(id, row.stamp) && !(indexed_.record->IsHistory() && !indexed_.switches->history);
}

void DatabaseCheck::CheckNote(uint32_t id)
{
    NoteRow row;
    const STATUS status = indexed_.database->ReadRow(id, false, &row);
    if (status != 0 || (row.flags & kRowDeleted) != 0) {
        RefuseNote(id, status != 0 ? status : STATUS{kStatusNoteDeleted});
        return;
    }
    ++report_->notes;
    NoteFiles* const files = folder_->Find(row.unid);
    if (files != nullptr)
        files->isSeen = true;
    if (IsWaiting(id, row)) {
        ++report_->waiting;
        return;
    }
    NoteOwner note;
    if (const STATUS opened = VLTNoteOpen(indexed_.handle, id, 0, note.Out()); opened != 0) {
        RefuseNote(id, opened);
        return;
    }
    CheckFiles(row, FateOfNote(note.Get(), indexed_.record->IsHistory(), *indexed_.switches), files);
}

void DatabaseCheck::CheckFiles(const NoteRow& row, const NoteFate& fate, const NoteFiles* files)
{
    Example example{.database = indexed_.record->path, .note = row.id, .url = UrlOf(row.unid)};
    if (fate.fate != Fate::kIndexed) {
        example.reason = std::string("the note ") + TextOfFate(fate.fate).reason;
        if (files != nullptr)
            RemoveFiles(Finding::kLeftOut, *folder_, *files, files->kinds, example, repair_, report_);
        return;
    }
    if (const auto others = files == nullptr ? 0 : files->kinds & ~BitOf(fate.kind); others != 0) {
        example.reason = std::string("the note is of the kind ") + fate.kind->name;
        RemoveFiles(Finding::kOtherKind, *folder_, *files, static_cast<uint8_t>(others), example, repair_, report_);
    }
    example.file = folder_->FileOf(row.unid, *fate.kind);
    MetafileState state = StateOfMetafile(example.file, *fate.kind, row, example.url);
    if (state.state == FileState::kGood)
        return;
    example.reason = state.reason;
    const Finding finding = FindingOf(state.state);
    report_->Add(finding, example);
    if (repair_->MakeRoom(example.file))
        again_.push_back({row.id, finding});
}

bool DatabaseCheck::MayExist(const NoteFiles& files, std::string* reason)
{
    uint32_t id = 0;
    NoteRow row;
    const STATUS found = indexed_.database->engine().FindUnid(files.unid, &id);
    if (found == kStatusNoSuchNote) {
        *reason = "the database has never had the note, or has lost it";
        return false;
    }
    if (found != 0 || indexed_.database->ReadRow(id, false, &row) != 0)
        return true;  // damaged
    if ((row.flags & kRowDeleted) != 0) {
        *reason = "the note was deleted";
        return !indexed_.switches->deletions || IsWaiting(id, row);
    }
    *reason = "the note is no document";
    return row.noteClass == kClassDocument;  // it came meanwhile
}

void DatabaseCheck::CheckLeftFiles()
{
    for (const NoteFiles& files : folder_->notes) {
        std::string reason;
        if (files.isSeen || MayExist(files, &reason))
            continue;
        RemoveFiles(Finding::kNoNote, *folder_, files, files.kinds,
                    {.database = indexed_.record->path, .url = UrlOf(files.unid), .reason = reason}, repair_, report_);
    }
}

}  // namespace pavex
