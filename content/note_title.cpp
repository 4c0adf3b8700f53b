// content/note_title.cpp: what a note and its database are called.
#include "content/note_title.h"

#include <cstring>

#include "content/buffers.h"
#include "content/formula_result.h"
#include "content/item_text.h"
#include "content/value_lock.h"
#include "platform/owner.h"

namespace {

constexpr char kTitleItem[] = "$WindowTitle";
constexpr WORD kFormClass = 4;
constexpr WORD kTitleField = 0;
constexpr size_t kInfoBytes = 128;

using NoteOwner = Owner<NOTEHANDLE, VLTNoteClose>;
using ComputeOwner = Owner<COMPUTEHANDLE, VLTComputeStop>;

DBHANDLE DatabaseOf(NOTEHANDLE note)
{
    DBHANDLE db = 0;
    VLTNoteGetInfo(note, kNoteInfoDatabase, &db);
    return db;
}

// Starts the title formula of the note's form.  The compiled formula does not need the form note any more.
void StartFormTitle(NOTEHANDLE note, COMPUTEHANDLE* compute)
{
    NOTEID id = 0;
    NoteOwner form;
    if (GetNoteForm(note, &id) && VLTNoteOpen(DatabaseOf(note), id, 0, form.Out()) == kStatusOk)
        UtilGetWinTitleCompute(form.Get(), compute);
}

}  // namespace

void UtilGetWinTitleCompute(NOTEHANDLE note, COMPUTEHANDLE* compute)
{
    *compute = 0;
    WORD type = 0;
    BLOCKID value{};
    DWORD valueBytes = 0;
    if (VLTItemInfo(note, kTitleItem, sizeof kTitleItem - 1, nullptr, &type, &value, &valueBytes) != kStatusOk ||
        type != kTypeFormula)
        return;
    const ValueLock lock(value);
    if (lock.Bytes() == nullptr || VLTComputeStart(lock.Bytes(), valueBytes, compute) != kStatusOk)
        *compute = 0;
}

bool GetNoteForm(NOTEHANDLE note, NOTEID* form)
{
    *form = 0;
    const DBHANDLE db = DatabaseOf(note);
    if (db == 0 || MyItemGetText(note, "Form", Buffer1, kBufferLimit) == 0)
        return false;
    if (IDXFindDesignNote(db, Buffer1, kFormClass, form) == kStatusOk)
        return true;
    *form = 0;
    return false;
}

WORD GetNoteTitle(NOTEHANDLE note, char* buffer, WORD size)
{
    if (size == 0)
        return 0;
    ComputeOwner compute;
    StartFormTitle(note, compute.Out());
    if (compute.Get() == 0)
        UtilGetWinTitleCompute(note, compute.Out());
    buffer[0] = '\0';  // after the last use of Buffer1, which may be the destination
    if (compute.Get() == 0)
        return 0;
    const void* result = nullptr;
    DWORD resultBytes = 0;
    if (VLTComputeEvaluate(compute.Get(), note, &result, &resultBytes) != kStatusOk)
        return 0;
    return FormulaResultText(result, resultBytes, buffer, size);
}

WORD GetDbTitle(DBHANDLE db, char* buffer, WORD size)
{
    if (size == 0)
        return 0;
    buffer[0] = '\0';
    char info[kInfoBytes] = {};
    if (VLTDbInfoGet(db, info) != kStatusOk)
        return 0;
    VLTDbInfoParse(info, kTitleField, buffer, size);
    return static_cast<WORD>(std::strlen(buffer));
}

SearchEngineResult IndexDbTitle(DBHANDLE db, SearchEngineEvent& event, const char* key, bool addEmpty)
{
    const WORD length = GetDbTitle(db, Buffer1, kBufferLimit);
    return IndexItemBuffer(Buffer1, length, key, event, addEmpty);
}
