// client/import/digest.cpp
#include "client/import/digest.h"

#include <algorithm>
#include <cstdint>

#include "client/import/owners.h"

namespace pavex {
namespace {

class Hash {
public:
    Hash() : checksum_(g_checksum_new(G_CHECKSUM_SHA256)) {}
    void Add(const void* bytes, size_t count)
    {
        g_checksum_update(checksum_.get(), static_cast<const guchar*>(bytes), static_cast<gssize>(count));
    }
    std::string Hex() { return g_checksum_get_string(checksum_.get()); }

private:
    ChecksumOwner checksum_;
};

}  // namespace

std::string DigestOf(std::string_view bytes)
{
    Hash hash;
    hash.Add(bytes.data(), bytes.size());
    return hash.Hex();
}

std::string DigestOf(const Note& note, const std::vector<std::string>& leftOut)
{
    Hash hash;
    for (const Item& item : note.items) {
        if (std::find(leftOut.begin(), leftOut.end(), item.name) != leftOut.end())
            continue;
        const uint64_t sizes[] = {item.name.size(), item.type, item.value.size()};
        hash.Add(sizes, sizeof sizes);
        hash.Add(item.name.data(), item.name.size());
        hash.Add(item.value.data(), item.value.size());
    }
    return hash.Hex();
}

}  // namespace pavex
