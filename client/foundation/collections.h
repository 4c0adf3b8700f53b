// client/foundation/collections.h: dictionaries, arrays and data.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "client/foundation/object.h"

namespace pavex::cf {

// Entries stay in the order they were added; a table of hashes beside them finds a key.
class Dictionary final : public Object {
public:
    static constexpr Kind kKind = Kind::Dictionary;

    struct Entry {
        const void* key;
        const void* value;
        size_t hash;  // of the key when it was added
    };

    // Null callbacks: bare pointers.
    Dictionary(const CFDictionaryKeyCallBacks* keyCallBacks, const CFDictionaryValueCallBacks* valueCallBacks);
    explicit Dictionary(const Dictionary& other);
    ~Dictionary() override;

    void Add(const void* key, const void* value);  // an existing key keeps its value
    const void* Find(const void* key) const;       // borrowed; null when absent
    const std::vector<Entry>& Entries() const { return entries_; }
    bool HoldsObjects() const;  // keys and values both retained by the kCFType callbacks

    bool Equals(const Object& other) const override;
    size_t HashCode() const override { return entries_.size(); }

private:
    size_t Hash(const void* key) const;
    size_t Slot(const void* key, size_t hash) const;  // where the key is, or would be
    void Rehash(size_t slots);

    CFDictionaryKeyCallBacks keys_;
    CFDictionaryValueCallBacks values_;
    std::vector<Entry> entries_;
    std::vector<uint32_t> slots_;  // 0: free, else 1 + index into entries_; a power of two of them
};

class Array final : public Object {
public:
    static constexpr Kind kKind = Kind::Array;

    explicit Array(std::vector<Ref<const Object>> values) : Object(kKind), values_(std::move(values)) {}
    const std::vector<Ref<const Object>>& Values() const { return values_; }

    bool Equals(const Object& other) const override;
    size_t HashCode() const override { return values_.size(); }

private:
    const std::vector<Ref<const Object>> values_;
};

class Data final : public Object {
public:
    static constexpr Kind kKind = Kind::Data;

    explicit Data(std::string bytes) : Object(kKind), bytes_(std::move(bytes)) {}
    const std::string& Bytes() const { return bytes_; }

    bool Equals(const Object& other) const override { return bytes_ == static_cast<const Data&>(other).bytes_; }
    size_t HashCode() const override { return std::hash<std::string>()(bytes_); }

private:
    const std::string bytes_;
};

}  // namespace pavex::cf
