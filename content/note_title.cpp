// content/note_title.cpp: what a note and its database are called.
#include "content/note_title.h"

#include <algorithm>
#include <cstring>

#include "content/buffers.h"
#include "content/item_text.h"
#include "content/scs_text.h"
#include "content/value_lock.h"
#include "content/value_text.h"
#include "platform/owner.h"

namespace {

constexpr char kTitleItem[] = "$WindowTitle";
constexpr WORD kFormClass = 4;
constexpr WORD kTitleField = 0;
constexpr size_t kInfoBytes = 128;
constexpr size_t kNumberBytes = 40 + 1;
constexpr size_t kTimeBytes = 80 + 1;
constexpr size_t kRangeHeaderBytes = 2 * sizeof(WORD);  // list count, range count

using NoteOwner = Owner<NOTEHANDLE, VLTNoteClose>;
using ComputeOwner = Owner<COMPUTEHANDLE, VLTComputeStop>;

WORD CopyText(const char* text, size_t length, char* buffer, WORD size)
{
    const size_t fitting = std::min(length, size - size_t{1});
    const size_t whole = fitting == length ? length : WholeScsBytes(text, fitting);
    std::memcpy(buffer, text, whole);
    buffer[whole] = '\0';
    return static_cast<WORD>(whole);
}

// The first value of a number or time, or of a list of them; false when there is none.
template <typename Value> bool FirstValue(bool range, const char* content, size_t bytes, Value* value)
{
    if (range) {
        if (bytes < kRangeHeaderBytes)
            return false;
        content += kRangeHeaderBytes;
        bytes -= kRangeHeaderBytes;
    }
    if (bytes < sizeof *value)
        return false;
    std::memcpy(value, content, sizeof *value);
    return true;
}

WORD NumberText(bool range, const char* content, size_t bytes, char* buffer, WORD size)
{
    double number = 0;
    char text[kNumberBytes];
    WORD length = 0;
    if (!FirstValue(range, content, bytes, &number) ||
        ConvertFLOATToText(nullptr, nullptr, &number, text, sizeof text, &length) != kStatusOk)
        return 0;
    return CopyText(text, length, buffer, size);
}

WORD TimeText(bool range, const char* content, size_t bytes, char* buffer, WORD size)
{
    TIMEDATE time{};
    char text[kTimeBytes];
    WORD length = 0;
    if (!FirstValue(range, content, bytes, &time) ||
        ConvertTIMEDATEToText(nullptr, nullptr, &time, text, sizeof text, &length) != kStatusOk)
        return 0;
    return CopyText(text, length, buffer, size);
}

// A formula's result, its type word first, as text.
WORD ResultText(const void* result, DWORD resultBytes, char* buffer, WORD size)
{
    if (result == nullptr || resultBytes < sizeof(WORD))
        return 0;
    const WORD type = WordAt(static_cast<const char*>(result));
    const char* content = static_cast<const char*>(result) + sizeof(WORD);
    const size_t bytes = resultBytes - sizeof(WORD);
    switch (type) {
    case kTypeNumber:
    case kTypeNumberRange:
        return NumberText(type == kTypeNumberRange, content, bytes, buffer, size);
    case kTypeTime:
    case kTypeTimeRange:
        return TimeText(type == kTypeTimeRange, content, bytes, buffer, size);
    case kTypeTextList:
        return JoinTextValue(type, content, bytes, buffer, size, kJoinComma);
    case kTypeText:
        return CopyText(content, bytes, buffer, size);
    default:  // rich text, formulas and whatever else a formula may come to have no title in them
        return 0;
    }
}

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
    return ResultText(result, resultBytes, buffer, size);
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
