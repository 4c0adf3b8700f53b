// client/check/note_facts.cpp: what is known of a note and its metafiles.
#include <sys/stat.h>

#include <filesystem>
#include <memory>

#include "client/check/explain.h"
#include "client/check/write_obstacle.h"
#include "client/store/charset.h"
#include "client/store/database.h"
#include "client/store/engine.h"
#include "client/store/note_link.h"
#include "client/store/open_database.h"
#include "client/store/path.h"
#include "client/store/timedate.h"
#include "platform/owner.h"

namespace pavex {

namespace {

namespace fs = std::filesystem;

using DatabaseOwner = Owner<DBHANDLE, VLTDbClose>;
using NoteOwner = Owner<NOTEHANDLE, VLTNoteClose>;

std::optional<ProgressRecord> RecordOf(const std::string& database)
{
    for (ProgressRecord& record : ReadProgressRecords()) {
        std::string path;
        std::error_code none;
        if (ResolvePath(ScsFromUtf8(record.path).c_str(), &path) == 0 && fs::equivalent(path, database, none))
            return std::move(record);
    }
    return std::nullopt;
}

bool IsFile(const std::string& path)
{
    struct stat about {};
    return lstat(path.c_str(), &about) == 0 && S_ISREG(about.st_mode);
}

// The state of the note itself; the note is left open for who wants to read on.
STATUS OpenLiveNote(DBHANDLE handle, const NoteRow& row, NOTEHANDLE* note, NoteFacts* facts)
{
    if ((row.flags & kRowDeleted) != 0)
        facts->state = NoteState::kDeleted;
    else if (row.noteClass != kClassDocument)
        facts->state = NoteState::kNoDocument;
    else
        return VLTNoteOpen(handle, row.id, 0, note);
    return 0;
}

void TakeFiles(const NoteRow& row, const std::string& metadata, const std::string& replica, NoteFacts* facts)
{
    const std::string stem = metadata + "/" + replica + "/" + HexFromUnid(row.unid) + ".";
    if (facts->state == NoteState::kLive && facts->fate.kind != nullptr) {
        facts->path = stem + facts->fate.kind->extension;
        facts->file = StateOfMetafile(facts->path, *facts->fate.kind, row, facts->url);
        facts->obstacle = FindWriteObstacle(metadata + "/" + replica);
        if (facts->file.state != FileState::kMissing && IsFile(facts->path))
            facts->found = facts->fate.kind;
    }
    for (const SearchKind& kind : kSearchKinds) {
        if (facts->found != nullptr || !IsFile(stem + kind.extension))
            continue;
        facts->found = &kind;
        facts->path = stem + kind.extension;
    }
}

}  // namespace

STATUS GatherNoteFacts(const std::string& database, uint32_t id, const std::string& metadata, NoteFacts* facts)
{
    facts->database = database;
    facts->id = id;
    facts->record = RecordOf(database);  // before the note: what comes in meanwhile waits
    DatabaseOwner handle;
    if (const STATUS status = VLTDbOpen(ScsFromUtf8(database).c_str(), handle.Out()); status != 0)
        return status;
    const std::shared_ptr<Database> open = DatabaseOf(handle.Get());
    const IndexSwitches switches = ReadIndexSwitches();
    NoteRow row;
    NoteOwner note;
    STATUS status = open->ReadRow(id, false, &row);
    if (status == kStatusNoSuchNote)
        return status;
    if (status == 0) {
        facts->unid = row.unid;
        facts->url = UrlOfNote(open->ReplicaId(), row.unid);
        facts->isWaiting = facts->record && facts->record->IsWaiting(id, row.stamp);
        status = OpenLiveNote(handle.Get(), row, note.Out(), facts);
    }
    if (status != 0) {
        facts->state = NoteState::kDamaged;
        facts->damage = DescribeStatus(status);
    }
    if (note.Get() != 0) {
        facts->fate = FateOfNote(note.Get(), facts->record && facts->record->IsHistory(), switches);
        facts->isSealed = (row.flags & kRowSealed) != 0 && !switches.encrypted;
    }
    if (!facts->url.empty())
        TakeFiles(row, metadata, HexFromId(open->ReplicaId()), facts);
    return 0;
}

}  // namespace pavex
