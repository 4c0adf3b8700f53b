// client/store/composite.cpp: the record-level calls on rich text.
#include <bit>
#include <cstring>
#include <type_traits>

#include "client/store/ods.h"
#include "client/store/record_walk.h"
#include "platform/store.h"

namespace {

using namespace pavex;

// A structure as the widths of its fields, which follow each other without gaps in the canonical form
// and in the host's.
struct OdsStructure {
    WORD type;
    WORD bytes;
    uint8_t fields[18];  // widths in bytes; 0 ends them
};

constexpr OdsStructure kStructures[] = {
    {kOdsLinkRecord, sizeof(LINKRECORD), {2, 2, 4, 2, 2, 2, 2, 2, 2, 2, 2}},
    {kOdsNoteLink, sizeof(NOTELINK), {4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4}},
    {kOdsWord, sizeof(WORD), {2}},
};

constexpr bool FieldsAddUp()
{
    for (const OdsStructure& structure : kStructures) {
        int sum = 0;
        for (const uint8_t width : structure.fields)
            sum += width;
        if (sum != structure.bytes)
            return false;
    }
    return true;
}
static_assert(FieldsAddUp());
static_assert(std::has_unique_object_representations_v<LINKRECORD> &&
              std::has_unique_object_representations_v<NOTELINK>);

const OdsStructure* FindStructure(WORD type)
{
    for (const OdsStructure& structure : kStructures) {
        if (structure.type == type)
            return &structure;
    }
    return nullptr;
}

// Canonical to host and back are the same step: both are packed, and only the byte order may differ.
void CopyFields(const OdsStructure& structure, const char* from, char* to)
{
    size_t offset = 0;
    for (const uint8_t width : structure.fields) {
        for (size_t i = 0; i < width; ++i)
            to[offset + i] = from[offset + (std::endian::native == std::endian::little ? i : width - 1 - i)];
        offset += width;
    }
}

template <typename Structure> void AppendStructure(std::string* bytes, WORD type, const Structure& structure)
{
    char host[sizeof structure];
    char canonical[sizeof structure];
    std::memcpy(host, &structure, sizeof structure);
    CopyFields(*FindStructure(type), host, canonical);
    bytes->append(canonical, sizeof canonical);
}

}  // namespace

namespace pavex {

void AppendWord(std::string* bytes, uint16_t word)
{
    bytes->push_back(static_cast<char>(word & 0xFF));
    bytes->push_back(static_cast<char>(word >> 8));
}

void AppendDword(std::string* bytes, uint32_t dword)
{
    AppendWord(bytes, static_cast<uint16_t>(dword & 0xFFFF));
    AppendWord(bytes, static_cast<uint16_t>(dword >> 16));
}

void AppendLinkRecord(std::string* bytes, const LINKRECORD& record)
{
    AppendStructure(bytes, kOdsLinkRecord, record);
}

void AppendNoteLink(std::string* bytes, const NOTELINK& link)
{
    AppendStructure(bytes, kOdsNoteLink, link);
}

}  // namespace pavex

WORD ODSLength(WORD structureType)
{
    const OdsStructure* const structure = FindStructure(structureType);
    return structure == nullptr ? WORD{0} : structure->bytes;
}

STATUS ODSReadMemory(const char** source, const char* end, WORD structureType, void* structure, WORD iterations)
{
    const OdsStructure* const form = FindStructure(structureType);
    if (form == nullptr || source == nullptr || *source == nullptr || *source > end)
        return kStatusDamaged;
    if (size_t{form->bytes} * iterations > static_cast<size_t>(end - *source))
        return kStatusDamaged;
    char* out = static_cast<char*>(structure);
    for (WORD i = 0; i < iterations; ++i) {
        CopyFields(*form, *source, out);
        *source += form->bytes;
        out += form->bytes;
    }
    return kStatusOk;
}

STATUS EnumCompositeBuffer(BLOCKID value, DWORD valueBytes, RecordCallback callback, void* context)
{
    const char* const bytes = static_cast<const char*>(OSLockBlock(value));
    if (bytes == nullptr)
        return kStatusBadHandle;
    STATUS status = kStatusOk;
    if (valueBytes < sizeof(WORD)) {
        status = kStatusDamaged;
    } else {
        RecordWalk walk({bytes + sizeof(WORD), valueBytes - sizeof(WORD)});
        Record record;
        while (status == kStatusOk && walk.Next(&record))
            status = callback(record.bytes.data(), record.signature, static_cast<DWORD>(record.bytes.size()), context);
        if (status == kStatusOk && walk.Damaged())
            status = kStatusDamaged;
    }
    OSUnlockBlock(value);
    return status;
}
