// client/store/open_note.cpp: the notes behind note handles.
#include "client/store/open_note.h"

#include <cstring>

#include "client/store/database.h"
#include "client/store/engine.h"
#include "client/store/item_codec.h"
#include "client/store/seal.h"

namespace pavex {
namespace {

std::unique_ptr<std::string> ValueWithType(uint16_t type, std::string_view value)
{
    auto bytes = std::make_unique<std::string>();
    bytes->reserve(sizeof type + value.size());
    bytes->resize(sizeof type);
    std::memcpy(bytes->data(), &type, sizeof type);
    bytes->append(value);
    return bytes;
}

Item ItemOf(const OpenNote::Slot& slot, const char* value)
{
    return {std::string(slot.name), slot.type, slot.flags,
            std::string(value + sizeof slot.type, slot.bytes - sizeof slot.type)};
}

}  // namespace

OpenNote::OpenNote(std::shared_ptr<Database> database, DBHANDLE handle)
    : database_(std::move(database)), handle_(handle)
{
}

STATUS OpenNote::Fill(NoteRow row)
{
    head_.id = row.id;
    head_.unid = row.unid;
    head_.sequence = row.sequence;
    head_.created = row.unid.Note;
    head_.modified = row.modified;
    head_.noteClass = row.noteClass;
    head_.sealed = (row.flags & kRowSealed) != 0;
    signed_ = (row.flags & kRowSigned) != 0;
    items_ = std::move(row.items);
    std::vector<StoredItem> stored;
    if (!DecodeItems(items_, &stored))
        return kStatusDamaged;
    slots_.reserve(stored.size());
    for (const StoredItem& item : stored) {
        Slot& slot = slots_.emplace_back();
        slot.name = item.name;
        slot.type = item.type;
        slot.flags = item.flags;
        slot.bytes = item.bytes;
        slot.data = item.data;
        slot.encrypted = item.encrypted;
        slot.position = static_cast<uint32_t>(slots_.size() - 1);
    }
    return 0;
}

int OpenNote::Find(std::string_view name) const
{
    for (size_t i = 0; i < slots_.size(); ++i) {
        if (Readable(i) && SameItemName(slots_[i].name, name))
            return static_cast<int>(i);
    }
    return -1;
}

bool OpenNote::Readable(size_t position) const
{
    return !slots_[position].encrypted && !slots_[position].replaced;
}

const char* OpenNote::Value(size_t position)
{
    Slot& slot = slots_[position];
    if (slot.data == nullptr && ReadLarge(&slot) != 0)
        return nullptr;
    return slot.data;
}

STATUS OpenNote::ReadLarge(Slot* slot)
{
    auto value = std::make_unique<std::string>();
    if (database_ == nullptr)
        return kStatusDamaged;
    const STATUS status = database_->ReadValue(head_.id, slot->position, value.get());
    if (status != 0)
        return status;
    // The note may have been saved anew since it was opened: then this is another value.
    uint16_t type = 0;
    if (value->size() != slot->bytes)
        return kStatusDamaged;
    std::memcpy(&type, value->data(), sizeof type);
    if (type != slot->type)
        return kStatusDamaged;
    slot->ownValue = std::move(value);
    slot->data = slot->ownValue->data();
    return 0;
}

void OpenNote::Set(const Item& item)
{
    if (const int old = Find(item.name); old >= 0)
        slots_[static_cast<size_t>(old)].replaced = true;
    Slot& slot = slots_.emplace_back();
    slot.ownName = std::make_unique<std::string>(item.name);
    slot.ownValue = ValueWithType(item.type, item.value);
    slot.name = *slot.ownName;
    slot.type = item.type;
    slot.flags = item.flags;
    slot.bytes = static_cast<uint32_t>(slot.ownValue->size());
    slot.data = slot.ownValue->data();
    slot.position = static_cast<uint32_t>(slots_.size() - 1);
}

STATUS OpenNote::Decrypt()
{
    // All or nothing: a note is not half readable.
    std::vector<std::unique_ptr<std::string>> plain(slots_.size());
    for (size_t i = 0; i < slots_.size(); ++i) {
        Slot& slot = slots_[i];
        if (!slot.encrypted)
            continue;
        if (slot.data == nullptr) {
            if (const STATUS status = ReadLarge(&slot); status != 0)
                return status;
        }
        std::string value;
        const STATUS status = UnsealValue(std::string_view(slot.data, slot.bytes).substr(sizeof slot.type), &value);
        if (status != 0)
            return status;
        plain[i] = ValueWithType(slot.type, value);
    }
    for (size_t i = 0; i < slots_.size(); ++i) {
        Slot& slot = slots_[i];
        if (!slot.encrypted)
            continue;
        slot.ownValue = std::move(plain[i]);
        slot.data = slot.ownValue->data();
        slot.bytes = static_cast<uint32_t>(slot.ownValue->size());
        slot.encrypted = false;
    }
    return 0;
}

HandleTable<OpenNote>& OpenNotes()
{
    static HandleTable<OpenNote> notes;
    return notes;
}

STATUS ReadOpenItem(NOTEHANDLE note, std::string_view name, Item* item)
{
    OpenNote* const open = OpenNotes().Find(note);
    if (open == nullptr)
        return kStatusBadHandle;
    const int found = open->Find(name);
    if (found < 0)
        return kStatusItemNotFound;
    const auto position = static_cast<size_t>(found);
    const char* const value = open->Value(position);
    if (value == nullptr)
        return kStatusDamaged;
    *item = ItemOf(open->At(position), value);
    return 0;
}

STATUS VisitOpenItems(NOTEHANDLE note, const std::function<bool(const Item&)>& callback)
{
    OpenNote* const open = OpenNotes().Find(note);
    if (open == nullptr)
        return kStatusBadHandle;
    for (size_t i = 0; i < open->Count(); ++i) {
        if (!open->Readable(i))
            continue;
        const char* const value = open->Value(i);
        if (value == nullptr)
            return kStatusDamaged;
        if (!callback(ItemOf(open->At(i), value)))
            return 0;
    }
    return 0;
}

STATUS SetOpenItem(NOTEHANDLE note, const Item& item)
{
    OpenNote* const open = OpenNotes().Find(note);
    if (open == nullptr)
        return kStatusBadHandle;
    open->Set(item);
    return 0;
}

}  // namespace pavex
