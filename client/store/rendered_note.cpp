// client/store/rendered_note.cpp: a whole note as rich text, the way the client shows it.
// First the fields, one "Name: value" line each, then the rich-text items one after the other.  Items whose
// names begin with '$' are the client's own and not shown.
#include <string>

#include "client/store/compound_text.h"
#include "client/store/item_view.h"
#include "client/store/record_writer.h"
#include "client/store/value_text.h"

namespace {

using namespace pavex;

bool IsShown(std::string_view name)
{
    return !name.starts_with('$');
}

void AddField(const ItemView& item, CompoundText* text)
{
    const std::string value = TextOfValue(item.type, item.value, ", ");
    if (!value.empty())
        text->AddParagraph(kStyleDefault, kDefaultFont, std::string(item.name) + ": " + value);
}

}  // namespace

STATUS CompoundTextAddRenderedNote(COMPOUNDHANDLE compound, NOTEHANDLE note)
{
    CompoundText* const text = CompoundTexts().Find(compound);
    OpenNote* const source = OpenNotes().Find(note);
    if (text == nullptr || source == nullptr)
        return kStatusBadHandle;
    ItemView item;
    for (size_t i = 0; i < source->Count(); ++i) {
        const OpenNote::Slot& slot = source->At(i);
        if (IsShown(slot.name) && slot.type != kTypeRichText && ViewItemAt(source, i, &item))
            AddField(item, text);
    }
    for (size_t i = 0; i < source->Count(); ++i) {
        const OpenNote::Slot& slot = source->At(i);
        if (IsShown(slot.name) && slot.type == kTypeRichText && ViewItemAt(source, i, &item))
            text->AddRecords(item.value);
    }
    return kStatusOk;
}
