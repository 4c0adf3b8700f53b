// client/store/item_view.h: an item of an open note without a copy of its value.
#pragma once

#include <string_view>

#include "client/store/open_note.h"

namespace pavex {

struct ItemView {
    std::string_view name;
    uint16_t type = 0;
    std::string_view value;  // without its type word; holds until the note is closed
};

// The readable item at a position; false when it is not readable, or its value cannot be read.
inline bool ViewItemAt(OpenNote* note, size_t position, ItemView* view)
{
    if (!note->Readable(position))
        return false;
    const OpenNote::Slot& slot = note->At(position);
    const char* const value = note->Value(position);
    if (value == nullptr || slot.bytes < sizeof(WORD))
        return false;
    *view = {slot.name, slot.type, {value + sizeof(WORD), slot.bytes - sizeof(WORD)}};
    return true;
}

// The first item of a name.  590 for a bad handle, 546 when there is none, 518 when it cannot be read.
inline STATUS ViewItem(NOTEHANDLE handle, std::string_view name, ItemView* view)
{
    OpenNote* const note = OpenNotes().Find(handle);
    if (note == nullptr)
        return kStatusBadHandle;
    const int position = note->Find(name);
    if (position < 0)
        return kStatusItemNotFound;
    return ViewItemAt(note, static_cast<size_t>(position), view) ? kStatusOk : kStatusDamaged;
}

}  // namespace pavex
