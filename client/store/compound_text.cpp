// client/store/compound_text.cpp: rich text that is being written for one item of a note.
#include "client/store/compound_text.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "client/store/open_note.h"
#include "client/store/record_walk.h"
#include "client/store/record_writer.h"
#include "client/store/richtext.h"

namespace pavex {

namespace {

constexpr size_t kStyleBytes = 64;
constexpr size_t kMostValueBytes = 0x7FFFFFFF - sizeof(WORD);

// Bytes at the end of the text that are the beginning, not the whole, of the delimiter.
size_t DelimiterBegun(std::string_view text, std::string_view delimiter)
{
    size_t begun = std::min(text.size(), delimiter.size() - 1);
    while (begun > 0 && !text.ends_with(delimiter.substr(0, begun)))
        --begun;
    return begun;
}

}  // namespace

HandleTable<CompoundText>& CompoundTexts()
{
    static HandleTable<CompoundText> texts;
    return texts;
}

void CompoundText::OpenParagraph()
{
    if (!open_)
        AppendBareRecord(&records_, kRecordParagraph);
    open_ = true;
}

void CompoundText::AddRun(DWORD style, DWORD font, std::string_view scs)
{
    if (scs.empty())
        return;
    OpenParagraph();
    AppendTextRecords(&records_, style, font, scs);
}

void CompoundText::AddText(DWORD style, DWORD font, std::string_view scs, std::string_view delimiter)
{
    const std::string joined = std::exchange(held_, {}) + std::string(scs);
    std::string_view rest = joined;
    if (delimiter.empty()) {
        AddRun(style, font, rest);
        return;
    }
    for (size_t end = rest.find(delimiter); end != std::string_view::npos; end = rest.find(delimiter)) {
        OpenParagraph();
        AddRun(style, font, rest.substr(0, end));
        open_ = false;
        rest.remove_prefix(end + delimiter.size());
    }
    const size_t begun = DelimiterBegun(rest, delimiter);
    AddRun(style, font, rest.substr(0, rest.size() - begun));
    held_ = rest.substr(rest.size() - begun);
    heldStyle_ = style;
    heldFont_ = font;
}

void CompoundText::AddParagraph(DWORD style, DWORD font, std::string_view scs)
{
    AddRun(heldStyle_, heldFont_, std::exchange(held_, {}));
    open_ = false;
    OpenParagraph();
    AddRun(style, font, scs);
    open_ = false;
}

void CompoundText::AddRecords(std::string_view records)
{
    AddRun(heldStyle_, heldFont_, std::exchange(held_, {}));
    open_ = false;
    RecordWalk walk(records);
    for (Record record; walk.Next(&record);)
        records_ += record.bytes;
}

STATUS CompoundText::WriteItem()
{
    AddRun(heldStyle_, heldFont_, std::exchange(held_, {}));
    if (records_.size() > kMostValueBytes)
        return kStatusNoMemory;
    return SetOpenItem(note_, RichTextItem(item_, std::move(records_)));
}

}  // namespace pavex

using namespace pavex;

STATUS CompoundTextCreate(NOTEHANDLE note, const char* item, COMPOUNDHANDLE* compound)
{
    *compound = 0;
    if (OpenNotes().Find(note) == nullptr)
        return kStatusBadHandle;
    if (item == nullptr || *item == 0)
        return kStatusBadText;
    *compound = CompoundTexts().Add(std::make_unique<CompoundText>(note, item));
    return kStatusOk;
}

void CompoundTextInitStyle(void* style64)
{
    std::memset(style64, 0, kStyleBytes);
}

STATUS CompoundTextDefineStyle(COMPOUNDHANDLE compound, const char*, const void*, DWORD* styleId)
{
    // Styles are numbers in the text: nothing that reads it looks at how a paragraph is shown.
    CompoundText* const text = CompoundTexts().Find(compound);
    if (text == nullptr)
        return kStatusBadHandle;
    *styleId = text->AddStyle();
    return kStatusOk;
}

STATUS CompoundTextAddTextExt(COMPOUNDHANDLE compound, DWORD styleId, DWORD fontId, const char* text, DWORD textLength,
                              const char* lineDelimiter, WORD delimiterLength, void*)
{
    CompoundText* const target = CompoundTexts().Find(compound);
    if (target == nullptr || !target->HasStyle(styleId))
        return kStatusBadHandle;
    const bool delimited = lineDelimiter != nullptr;
    target->AddText(styleId, fontId, {text, textLength},
                    delimited ? std::string_view(lineDelimiter, delimiterLength) : std::string_view());
    return kStatusOk;
}

STATUS CompoundTextAddParagraphExt(COMPOUNDHANDLE compound, DWORD styleId, DWORD fontId, const char* text,
                                   DWORD textLength, void*)
{
    CompoundText* const target = CompoundTexts().Find(compound);
    if (target == nullptr || !target->HasStyle(styleId))
        return kStatusBadHandle;
    target->AddParagraph(styleId, fontId, {text, textLength});
    return kStatusOk;
}

STATUS CompoundTextClose(COMPOUNDHANDLE compound)
{
    const auto text = CompoundTexts().Remove(compound);
    return text == nullptr ? kStatusBadHandle : text->WriteItem();
}

void CompoundTextDiscard(COMPOUNDHANDLE compound)
{
    CompoundTexts().Remove(compound);
}
