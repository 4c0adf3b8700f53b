// content/note_contents.cpp: indexes a whole note by way of a scratch note whose body receives its text.
// The scratch note is then read like any other body, so that whatever a note holds comes out as the
// store itself would show it.
#include <algorithm>
#include <cstring>
#include <string>

#include "content/body_text.h"
#include "content/buffers.h"
#include "content/item_text.h"
#include "content/note_url.h"
#include "content/value_text.h"
#include "platform/owner.h"

namespace {

constexpr char kBodyItem[] = "Body";
constexpr DWORD kParagraphFont = 0x0A000001;
constexpr size_t kStyleBytes = 64;
constexpr size_t kItemNameBytes = 256;

using NoteOwner = Owner<NOTEHANDLE, VLTNoteClose>;

// A compound text for the "Body" of a note.  One that is not closed is discarded.
class BodyCompound {
public:
    explicit BodyCompound(NOTEHANDLE note)
    {
        if (CompoundTextCreate(note, "Body", &handle_) != kStatusOk)
            handle_ = 0;
    }
    ~BodyCompound()
    {
        if (handle_ != 0)
            CompoundTextDiscard(handle_);
    }
    BodyCompound(const BodyCompound&) = delete;
    BodyCompound& operator=(const BodyCompound&) = delete;

    COMPOUNDHANDLE Get() const { return handle_; }

    STATUS Close()
    {
        const STATUS status = CompoundTextClose(handle_);
        if (status == kStatusOk)
            handle_ = 0;
        return status;
    }

private:
    COMPOUNDHANDLE handle_ = 0;
};

NoteOwner CreateScratchNote(NOTEHANDLE note, DBHANDLE scratchDb, DWORD createFlags)
{
    NOTEHANDLE scratch = 0;
    if (scratchDb != 0 && VLTNoteCreate(scratchDb, createFlags, &scratch) == kStatusOk)
        return NoteOwner(scratch);
    DBHANDLE own = 0;
    VLTNoteGetInfo(note, kNoteInfoDatabase, &own);
    scratch = 0;
    return NoteOwner(VLTNoteCreate(own, createFlags, &scratch) == kStatusOk ? scratch : 0);
}

STATUS AddParagraph(COMPOUNDHANDLE compound, const char* text, size_t length)
{
    return CompoundTextAddParagraphExt(compound, kStyleDefault, kParagraphFont, text, static_cast<DWORD>(length),
                                       nullptr);
}

STATUS DefineStyle(COMPOUNDHANDLE compound)
{
    char style[kStyleBytes];
    CompoundTextInitStyle(style);
    DWORD styleId = 0;
    return CompoundTextDefineStyle(compound, "", style, &styleId);
}

STATUS AddNote(COMPOUNDHANDLE compound, NOTEHANDLE note, bool render)
{
    if (render)
        return CompoundTextAddRenderedNote(compound, note);
    ItemScanContext context{note, compound, {}};
    return VLTItemScan(note, WriteItem, &context);
}

STATUS AddUrlAndMarkers(COMPOUNDHANDLE compound, NOTEHANDLE note)
{
    if (const WORD length = GetNoteURL(note, Buffer2); length != 0) {
        if (const STATUS status = AddParagraph(compound, Buffer2, length); status != kStatusOk)
            return status;
    }
    return AddParagraph(compound, Buffer2, GetCookies(false, Buffer2, kBufferLimit));
}

// Writes the note's text, URL and markers into the "Body" of the scratch note.
STATUS FillBody(NOTEHANDLE scratch, NOTEHANDLE note, bool render)
{
    BodyCompound compound(scratch);
    if (compound.Get() == 0)
        return kStatusNoMemory;
    if (const STATUS status = DefineStyle(compound.Get()); status != kStatusOk)
        return status;
    if (const STATUS status = AddNote(compound.Get(), note, render); status != kStatusOk)
        return status;
    if (const STATUS status = AddUrlAndMarkers(compound.Get(), note); status != kStatusOk)
        return status;
    return compound.Close();
}

// Adds the text of a rich-text item, once for each name.
void WriteRichText(ItemScanContext& scan, const char* name)
{
    CString lower(name);
    lower.MakeLower();
    auto& written = scan.richTextWritten;
    if (std::find(written.begin(), written.end(), lower) != written.end())
        return;
    static_cast<void>(AddItemContents(scan.note, lower.toString().c_str(), scan.compound));
    written.push_back(lower);
}

}  // namespace

STATUS WriteItem([[maybe_unused]] WORD spare, [[maybe_unused]] WORD itemFlags, const char* name, WORD nameLength,
                 const void* value, DWORD valueBytes, void* context)
{
    ItemScanContext& scan = *static_cast<ItemScanContext*>(context);
    char item[kItemNameBytes + 1];
    const size_t itemLength = std::min<size_t>(nameLength, kItemNameBytes);
    std::memcpy(item, name, itemLength);
    item[itemLength] = '\0';
    if (value == nullptr || valueBytes < sizeof(WORD))
        return kStatusOk;

    const WORD type = WordAt(static_cast<const char*>(value));
    if (type == kTypeRichText) {
        WriteRichText(scan, item);
        return kStatusOk;
    }
    const int joinMode = type == kTypeText ? kJoinCrLf : kJoinComma;
    const WORD length = GetMultiLineItem(scan.note, item, Buffer1, kBufferLimit, joinMode);
    return length == 0 ? kStatusOk : AddParagraph(scan.compound, Buffer1, length);
}

STATUS IndexNoteContents(NOTEHANDLE note, DBHANDLE scratchDb, DWORD createFlags, bool render, bool* done,
                         SearchEngineEvent& event)
{
    *done = false;
    const NoteOwner scratch = CreateScratchNote(note, scratchDb, createFlags);
    if (scratch.Get() == 0 || FillBody(scratch.Get(), note, render) != kStatusOk)
        return kStatusOk;
    const SearchEngineResult result = IndexItemContents(scratch.Get(), kBodyItem, false, event);
    *done = result == 0;
    return static_cast<STATUS>(result);
}
