// client/store/item_codec.cpp: the stored form of a note's items.
#include "client/store/item_codec.h"

#include <bit>
#include <cstring>
#include <limits>

#include "client/store/seal.h"

namespace pavex {
namespace {

static_assert(std::endian::native == std::endian::little, "values are handed out in place, in host byte order");

constexpr uint8_t kBeside = 1;  // the value is a row of its own; only its type word stands here
constexpr uint8_t kEncrypted = 2;
constexpr size_t kChecksumBytes = sizeof(uint64_t);

template <typename Number> void Append(std::string* bytes, Number number)
{
    char raw[sizeof number];
    std::memcpy(raw, &number, sizeof number);
    bytes->append(raw, sizeof number);
}

// Reads forward, never past the end.
class Reader {
public:
    explicit Reader(std::string_view bytes) : rest_(bytes) {}
    template <typename Number> bool Read(Number* number)
    {
        std::string_view raw;
        if (!Read(sizeof *number, &raw))
            return false;
        std::memcpy(number, raw.data(), sizeof *number);
        return true;
    }
    bool Read(size_t count, std::string_view* bytes)
    {
        if (rest_.size() < count)
            return false;
        *bytes = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return true;
    }
    bool AtEnd() const { return rest_.empty(); }

private:
    std::string_view rest_;
};

bool DecodeItem(Reader* reader, StoredItem* item)
{
    uint8_t nameLength = 0;
    uint8_t storage = 0;
    std::string_view value;
    if (!reader->Read(&nameLength) || !reader->Read(&storage) || !reader->Read(&item->flags) ||
        !reader->Read(&item->bytes) || !reader->Read(nameLength, &item->name))
        return false;
    const bool beside = (storage & kBeside) != 0;
    if (nameLength == 0 || item->bytes < sizeof item->type ||
        !reader->Read(beside ? sizeof item->type : item->bytes, &value))
        return false;
    std::memcpy(&item->type, value.data(), sizeof item->type);
    item->data = beside ? nullptr : value.data();
    item->encrypted = (storage & kEncrypted) != 0;
    return true;
}

}  // namespace

uint64_t Checksum(std::string_view bytes, uint64_t seed)
{
    constexpr uint64_t kMultiplier = 0x9E3779B97F4A7C15;
    uint64_t sum = (seed ^ bytes.size()) * kMultiplier;
    while (!bytes.empty()) {
        uint64_t word = 0;
        const size_t taken = bytes.size() < sizeof word ? bytes.size() : sizeof word;
        std::memcpy(&word, bytes.data(), taken);
        sum = (std::rotl(sum, 29) ^ word) * kMultiplier;
        sum ^= sum >> 32;
        bytes.remove_prefix(taken);
    }
    return sum;
}

STATUS EncodeItems(const std::vector<Item>& items, bool sealed, std::string* bytes, std::vector<LargeValue>* large)
{
    std::string encoded(kChecksumBytes, '\0');
    uint32_t position = 0;
    for (const Item& item : items) {
        if (item.name.empty() || item.name.size() > std::numeric_limits<uint8_t>::max())
            return kStatusBadText;
        std::string encrypted;
        const bool encrypt = sealed && (item.flags & kItemSealed) != 0;
        if (encrypt && !SealValue(item.value, &encrypted))
            return kStatusSealed;
        const std::string& value = encrypt ? encrypted : item.value;
        const size_t valueBytes = sizeof item.type + value.size();
        if (valueBytes > std::numeric_limits<int32_t>::max())
            return kStatusNoMemory;
        const bool beside = valueBytes > kLargestInlineValue;
        const int storage = (beside ? kBeside : 0) | (encrypt ? kEncrypted : 0);
        Append(&encoded, static_cast<uint8_t>(item.name.size()));
        Append(&encoded, static_cast<uint8_t>(storage));
        Append(&encoded, item.flags);
        Append(&encoded, static_cast<uint32_t>(valueBytes));
        encoded += item.name;
        Append(&encoded, item.type);
        if (beside) {
            LargeValue& beneath = large->emplace_back(LargeValue{position, {}});
            beneath.bytes.reserve(valueBytes);
            Append(&beneath.bytes, item.type);
            beneath.bytes += value;
        } else {
            encoded += value;
        }
        ++position;
    }
    const uint64_t sum = Checksum(std::string_view(encoded).substr(kChecksumBytes));
    std::memcpy(encoded.data(), &sum, sizeof sum);
    *bytes = std::move(encoded);
    return 0;
}

bool DecodeItems(std::string_view bytes, std::vector<StoredItem>* items)
{
    Reader reader(bytes);
    uint64_t sum = 0;
    if (!reader.Read(&sum) || sum != Checksum(bytes.substr(kChecksumBytes)))
        return false;
    while (!reader.AtEnd()) {
        if (!DecodeItem(&reader, &items->emplace_back()))
            return false;
    }
    return true;
}

}  // namespace pavex
