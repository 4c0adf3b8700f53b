// client/store/record_walk.cpp: steps through the records of rich text, every bound checked.
#include "client/store/record_walk.h"

#include "client/store/ods.h"
#include "client/store/richtext.h"

namespace pavex {

uint16_t WordAt(std::string_view bytes, size_t offset)
{
    const auto byte = [&](size_t i) { return static_cast<uint8_t>(bytes[offset + i]); };
    return static_cast<uint16_t>(byte(0) | byte(1) << 8);
}

uint32_t DwordAt(std::string_view bytes, size_t offset)
{
    return WordAt(bytes, offset) | static_cast<uint32_t>(WordAt(bytes, offset + 2)) << 16;
}

bool RecordWalk::Next(Record* record)
{
    if (rest_.empty())
        return false;
    const size_t length = rest_.size() < kRecordHeaderBytes ? 0 : WordAt(rest_, 2);
    damaged_ = length < kRecordHeaderBytes || length % 2 != 0 || length > rest_.size();
    if (damaged_) {
        rest_ = {};
        return false;
    }
    *record = {WordAt(rest_, 0), rest_.substr(0, length)};
    rest_.remove_prefix(length);
    return true;
}

bool TextOfRecord(const Record& record, std::string_view* scs)
{
    if (record.bytes.size() < kTextHeaderBytes)
        return false;
    const size_t length = WordAt(record.bytes, kTextHeaderBytes - 2);
    if (length > record.bytes.size() - kTextHeaderBytes)
        return false;
    *scs = record.bytes.substr(kTextHeaderBytes, length);
    return true;
}

LinkReading LinkOfRecord(const Record& record, NOTELINK* link, std::string_view* labelScs)
{
    const char* position = record.bytes.data();
    const char* const end = position + record.bytes.size();
    LINKRECORD fixed;
    if (ODSReadMemory(&position, end, kOdsLinkRecord, &fixed, 1) != kStatusOk)
        return LinkReading::kDamaged;
    if (fixed.linkType != kLinkToNote || (fixed.flags & kLinkFollows) == 0)
        return LinkReading::kOther;
    const size_t variable = (size_t{fixed.firstCount} + fixed.secondCount) * sizeof(WORD);
    if (variable > static_cast<size_t>(end - position))
        return LinkReading::kDamaged;
    position += variable;
    if (ODSReadMemory(&position, end, kOdsNoteLink, link, 1) != kStatusOk)
        return LinkReading::kDamaged;
    *labelScs = {position, static_cast<size_t>(end - position)};
    while (!labelScs->empty() && labelScs->back() == 0)
        labelScs->remove_suffix(1);
    return LinkReading::kNote;
}

}  // namespace pavex
