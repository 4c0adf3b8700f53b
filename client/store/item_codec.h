// client/store/item_codec.h: the stored form of a note's items.
// One run of bytes with a checksum in front, so that a flipped bit is noticed and not believed.
// docs/formats/database.md has it byte by byte.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "client/store/engine.h"
#include "client/store/note.h"

namespace pavex {

// Values of more bytes than this, type word counted, are stored beside the note.  The usual mail has one
// such value at most, and a note's row still fits a page of the database.
constexpr size_t kLargestInlineValue = 2048;

// Checksum of stored bytes; `seed` lets one go on from another.
uint64_t Checksum(std::string_view bytes, uint64_t seed = 0);

// sealed: items marked kItemSealed are encrypted.  595 when they cannot be; 591 for an item name that is
// empty or longer than 255 bytes; 592 for a value that no item can hold.
STATUS EncodeItems(const std::vector<Item>& items, bool sealed, std::string* bytes, std::vector<LargeValue>* large);

struct StoredItem {
    std::string_view name;
    uint16_t type;
    uint16_t flags;
    bool encrypted;
    uint32_t bytes;    // of the value, type word counted
    const char* data;  // the type word; null: stored beside the note
};
// Points into `bytes`.  False, and nothing is to be used, when they are damaged.
bool DecodeItems(std::string_view bytes, std::vector<StoredItem>* items);

}  // namespace pavex
