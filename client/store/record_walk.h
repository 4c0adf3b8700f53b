// client/store/record_walk.h: steps through the records of rich text, every bound checked.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/store.h"

namespace pavex {

constexpr size_t kRecordHeaderBytes = 4;  // WORD signature, WORD length of the whole record
constexpr size_t kTextHeaderBytes = 14;   // the header, DWORD style, DWORD font, WORD text bytes

// A little-endian number at `offset`; the caller has checked that it is there.
uint16_t WordAt(std::string_view bytes, size_t offset);
uint32_t DwordAt(std::string_view bytes, size_t offset);

struct Record {
    uint16_t signature = 0;
    std::string_view bytes;  // the whole record
};

class RecordWalk {
public:
    explicit RecordWalk(std::string_view records) : rest_(records) {}
    // False at the end, and at a record whose header or length cannot be true: Damaged() tells which.
    bool Next(Record* record);
    bool Damaged() const { return damaged_; }

private:
    std::string_view rest_;
    bool damaged_ = false;
};

// The text of a text record; false when its own length goes past the record.
bool TextOfRecord(const Record& record, std::string_view* scs);
enum class LinkReading { kNote, kOther, kDamaged };
// The link of a link record and its label, when it is a link to a note.  kDamaged: its parts do not fit in
// the record.
LinkReading LinkOfRecord(const Record& record, NOTELINK* link, std::string_view* labelScs);

}  // namespace pavex
