// client/store/c_note.cpp: the calls on notes, and the blocks that their values are lent out in.
#include <cstring>
#include <utility>

#include "client/store/database.h"
#include "client/store/engine.h"
#include "client/store/open_database.h"
#include "client/store/open_note.h"
#include "platform/store.h"

using pavex::DatabaseOf;
using pavex::OpenNote;
using pavex::OpenNotes;

STATUS VLTNoteOpen(DBHANDLE db, NOTEID id, WORD /*flags*/, NOTEHANDLE* note)
{
    *note = 0;
    auto database = DatabaseOf(db);
    if (!database)
        return kStatusBadHandle;
    pavex::NoteRow row;
    if (const STATUS status = database->ReadRow(id, true, &row); status != 0)
        return status;
    if ((row.flags & pavex::kRowDeleted) != 0)
        return kStatusNoteDeleted;
    auto open = std::make_unique<OpenNote>(std::move(database), db);
    if (const STATUS status = open->Fill(std::move(row)); status != 0)
        return status;
    *note = OpenNotes().Add(std::move(open));
    return 0;
}

STATUS VLTNoteCreate(DBHANDLE db, DWORD /*flags*/, NOTEHANDLE* note)
{
    *note = 0;
    auto database = DatabaseOf(db);
    if (!database)
        return kStatusBadHandle;
    *note = OpenNotes().Add(std::make_unique<OpenNote>(std::move(database), db));
    return 0;
}

STATUS VLTNoteClose(NOTEHANDLE note)
{
    return OpenNotes().Remove(note) ? kStatusOk : kStatusBadHandle;
}

void VLTNoteGetInfo(NOTEHANDLE note, WORD selector, void* value)
{
    const OpenNote* const open = OpenNotes().Find(note);
    if (open == nullptr)
        return;
    const pavex::Note& head = open->Head();
    const auto write = [value](const auto& member) { std::memcpy(value, &member, sizeof member); };
    switch (selector) {
    case kNoteInfoDatabase:
        write(open->DatabaseHandle());
        break;
    case kNoteInfoId:
        write(NOTEID{head.id});
        break;
    case kNoteInfoOriginatorId:
        write(ORIGINATORID{head.unid, head.sequence, head.modified});
        break;
    case kNoteInfoClass:
        write(WORD{head.noteClass});
        break;
    case kNoteInfoModified:
        write(head.modified);
        break;
    }
}

bool VLTNoteIsSignedOrSealed(NOTEHANDLE note, bool* isSigned, bool* isSealed)
{
    const OpenNote* const open = OpenNotes().Find(note);
    const bool hasSignature = open != nullptr && open->Signed();
    const bool hasSeal = open != nullptr && open->Head().sealed;
    if (isSigned != nullptr)
        *isSigned = hasSignature;
    if (isSealed != nullptr)
        *isSealed = hasSeal;
    return hasSignature || hasSeal;
}

STATUS VLTNoteDecrypt(NOTEHANDLE note, WORD /*flags*/, void* /*reserved*/)
{
    OpenNote* const open = OpenNotes().Find(note);
    return open == nullptr ? kStatusBadHandle : open->Decrypt();
}

// A block is a note's handle and the number of an item in it, from 1: nothing to free, and stale as soon as
// the note is closed.
void* OSLockBlock(BLOCKID block)
{
    OpenNote* const open = OpenNotes().Find(block.pool);
    if (open == nullptr || block.block == 0 || block.block > open->Count())
        return nullptr;
    const size_t position = block.block - 1;
    // Not written to by contract; the interface knows no pointer to constant bytes.
    return open->At(position).encrypted ? nullptr : const_cast<char*>(open->Value(position));
}

void OSUnlockBlock(BLOCKID /*block*/)
{
    // Values stay where they are until their note is closed: there is nothing to give back.
}
