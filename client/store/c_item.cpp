// client/store/c_item.cpp: the calls on the items of a note.
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "client/store/charset.h"
#include "client/store/item_view.h"
#include "client/store/open_note.h"
#include "client/store/value_text.h"
#include "platform/store.h"

namespace pavex {
namespace {

WORD WriteTerminated(std::string_view scs, char* text, WORD maxText)
{
    const size_t bytes = ScsPrefix(scs, maxText);
    scs.copy(text, bytes);
    text[bytes] = '\0';
    return static_cast<WORD>(bytes);
}

// An item without a copy of its value; type 0 when there is none.
struct FoundItem {
    ItemView view;
    const OpenNote::Slot* slot = nullptr;

    FoundItem(NOTEHANDLE note, const char* name)
    {
        OpenNote* const open = OpenNotes().Find(note);
        const int found = open == nullptr ? -1 : open->Find(name);
        if (found >= 0 && ViewItemAt(open, static_cast<size_t>(found), &view))
            slot = &open->At(static_cast<size_t>(found));
    }
    bool HasTexts() const { return view.type == kTypeText || view.type == kTypeTextList; }
};

// Entries of a text list, or a text as its one entry; in place.  None for other types and damaged values.
struct TextEntries {
    size_t count = 0;
    bool list = false;
    std::string_view value;
    const OpenNote::Slot* slot;

    explicit TextEntries(const FoundItem& item)
        : list(item.view.type == kTypeTextList), value(item.view.value), slot(item.slot)
    {
        if (item.view.type == kTypeText)
            count = 1;
        else if (list && value.size() >= sizeof(WORD))
            count = WordAt(0);
        if (list && value.size() < sizeof(WORD) * (1 + count))
            count = 0;
    }
    size_t WordAt(size_t index) const
    {
        WORD word = 0;
        std::memcpy(&word, value.data() + index * sizeof word, sizeof word);
        return word;
    }
    // Bytes of the entries before the index.  Lists are read from front to back, one call an entry, so that
    // counting goes on where it ended.
    size_t BytesBefore(size_t index) const
    {
        OpenNote::ListPlace place = slot->place;
        if (index < place.entry)
            place = {};
        for (; place.entry < index; ++place.entry)
            place.bytes += static_cast<uint32_t>(WordAt(1 + place.entry));
        slot->place = place;
        return place.bytes;
    }
    std::string_view At(size_t index) const
    {
        if (index >= count)
            return {};
        if (!list)
            return value;
        const size_t start = sizeof(WORD) * (1 + count) + BytesBefore(index);
        const size_t bytes = WordAt(1 + index);
        return start > value.size() || value.size() - start < bytes ? std::string_view{} : value.substr(start, bytes);
    }
};

// The text of the first of several numbers or times; empty for what has no text.
std::string FirstValueText(const ItemView& view)
{
    if (view.type == kTypeRichText)
        return {};
    const Item item = {"", view.type, 0, std::string(view.value)};
    if (view.type == kTypeNumberRange) {
        const auto number = NumberValue(item);
        return number ? TextOfNumber(*number).value_or("") : std::string();
    }
    if (view.type == kTypeTimeRange) {
        const auto times = TimeValues(item);
        return times && !times->empty() ? TextOfItem(TimeItem("", times->front()), "") : std::string();
    }
    return TextOfItem(item, "");
}

// A copy of the item of that name, or one without a value.
Item ItemOrNone(NOTEHANDLE note, const char* name)
{
    Item item;
    return ReadOpenItem(note, name, &item) == 0 ? item : Item{};
}

}  // namespace
}  // namespace pavex

using pavex::FoundItem;
using pavex::ItemOrNone;
using pavex::OpenNote;
using pavex::OpenNotes;

STATUS VLTItemInfo(NOTEHANDLE note, const char* name, WORD nameLength, BLOCKID* item, WORD* type, BLOCKID* value,
                   DWORD* valueBytes)
{
    const OpenNote* const open = OpenNotes().Find(note);
    if (open == nullptr)
        return kStatusBadHandle;
    const int found = open->Find({name, nameLength});
    if (found < 0)
        return kStatusItemNotFound;
    const auto position = static_cast<DWORD>(found);
    const OpenNote::Slot& slot = open->At(position);
    const BLOCKID block = {note, position + 1};
    if (item != nullptr)
        *item = block;
    if (type != nullptr)
        *type = slot.type;
    if (value != nullptr)
        *value = block;
    if (valueBytes != nullptr)
        *valueBytes = slot.bytes;
    return 0;
}

WORD VLTItemGetText(NOTEHANDLE note, const char* name, char* text, WORD maxText)
{
    const FoundItem item(note, name);
    if (item.HasTexts())
        return pavex::WriteTerminated(pavex::TextEntries(item).At(0), text, maxText);
    return pavex::WriteTerminated(pavex::FirstValueText(item.view), text, maxText);
}

WORD VLTItemConvertToText(NOTEHANDLE note, const char* name, char* text, WORD maxText, char separator)
{
    const FoundItem item(note, name);
    return pavex::WriteTerminated(pavex::TextOfValue(item.view.type, item.view.value, {&separator, 1}), text, maxText);
}

WORD VLTItemGetTextListEntry(NOTEHANDLE note, const char* name, WORD index, char* text, WORD maxText)
{
    return pavex::WriteTerminated(pavex::TextEntries(FoundItem(note, name)).At(index), text, maxText);
}

WORD VLTItemGetTextListEntries(NOTEHANDLE note, const char* name)
{
    return static_cast<WORD>(pavex::TextEntries(FoundItem(note, name)).count);
}

long VLTItemGetLong(NOTEHANDLE note, const char* name, long defaultValue)
{
    const auto number = pavex::NumberValue(ItemOrNone(note, name));
    // The greatest long has no double of its own; the bound is the first value that no longer fits.
    constexpr double kBound = -static_cast<double>(std::numeric_limits<long>::min());
    if (!number || !(std::trunc(*number) >= -kBound) || !(*number < kBound))
        return defaultValue;
    return static_cast<long>(*number);
}

bool VLTItemGetTime(NOTEHANDLE note, const char* name, TIMEDATE* time)
{
    const auto times = pavex::TimeValues(ItemOrNone(note, name));
    if (!times || times->empty())
        return false;
    *time = times->front();
    return true;
}

STATUS VLTItemScan(NOTEHANDLE note, ItemScanCallback callback, void* context)
{
    OpenNote* const open = OpenNotes().Find(note);
    if (open == nullptr)
        return kStatusBadHandle;
    // The callback may add items; those that were there when it began are shown.
    const size_t count = open->Count();
    for (size_t i = 0; i < count; ++i) {
        if (!open->Readable(i))
            continue;
        const char* const value = open->Value(i);
        if (value == nullptr)
            return kStatusDamaged;
        const OpenNote::Slot& slot = open->At(i);
        const STATUS status =
            callback(0, slot.flags, slot.name.data(), static_cast<WORD>(slot.name.size()), value, slot.bytes, context);
        if (status != 0)
            return status;
    }
    return 0;
}
