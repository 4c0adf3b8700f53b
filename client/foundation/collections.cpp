// client/foundation/collections.cpp: dictionaries, arrays and data.
#include "client/foundation/collections.h"

#include <algorithm>

using namespace pavex::cf;

namespace {

constexpr size_t kFirstSlots = 16;

const void* RetainObject(CFAllocatorRef, const void* value)
{
    return CFRetain(value);
}

void ReleaseObject(CFAllocatorRef, const void* value)
{
    CFRelease(value);
}

}  // namespace

Dictionary::Dictionary(const CFDictionaryKeyCallBacks* keyCallBacks, const CFDictionaryValueCallBacks* valueCallBacks)
    : Object(kKind), keys_(keyCallBacks ? *keyCallBacks : CFDictionaryKeyCallBacks{}),
      values_(valueCallBacks ? *valueCallBacks : CFDictionaryValueCallBacks{})
{
    Rehash(kFirstSlots);
}

Dictionary::Dictionary(const Dictionary& other)
    : Object(kKind), keys_(other.keys_), values_(other.values_), entries_(other.entries_), slots_(other.slots_)
{
    for (Entry& entry : entries_) {
        if (keys_.retain)
            entry.key = keys_.retain(nullptr, entry.key);
        if (values_.retain)
            entry.value = values_.retain(nullptr, entry.value);
    }
}

Dictionary::~Dictionary()
{
    for (const Entry& entry : entries_) {
        if (keys_.release)
            keys_.release(nullptr, entry.key);
        if (values_.release)
            values_.release(nullptr, entry.value);
    }
}

size_t Dictionary::Hash(const void* key) const
{
    return keys_.hash ? keys_.hash(key) : reinterpret_cast<uintptr_t>(key) >> 4;
}

size_t Dictionary::Slot(const void* key, size_t hash) const
{
    const size_t mask = slots_.size() - 1;
    size_t slot = hash & mask;
    while (slots_[slot] != 0) {
        const Entry& entry = entries_[slots_[slot] - 1];
        if (entry.key == key || (entry.hash == hash && keys_.equal && keys_.equal(entry.key, key)))
            break;
        slot = (slot + 1) & mask;
    }
    return slot;
}

void Dictionary::Rehash(size_t slots)
{
    slots_.assign(slots, 0);
    for (size_t i = 0; i < entries_.size(); ++i) {
        size_t slot = entries_[i].hash & (slots - 1);
        while (slots_[slot] != 0)
            slot = (slot + 1) & (slots - 1);
        slots_[slot] = static_cast<uint32_t>(i + 1);
    }
}

void Dictionary::Add(const void* key, const void* value)
{
    const size_t hash = Hash(key);
    size_t slot = Slot(key, hash);
    if (slots_[slot] != 0)
        return;
    if ((entries_.size() + 1) * 2 > slots_.size()) {
        Rehash(slots_.size() * 2);
        slot = Slot(key, hash);
    }
    if (keys_.retain)
        key = keys_.retain(nullptr, key);
    if (values_.retain)
        value = values_.retain(nullptr, value);
    entries_.push_back({key, value, hash});
    slots_[slot] = static_cast<uint32_t>(entries_.size());
}

const void* Dictionary::Find(const void* key) const
{
    if (entries_.empty())
        return nullptr;
    const uint32_t index = slots_[Slot(key, Hash(key))];
    return index == 0 ? nullptr : entries_[index - 1].value;
}

bool Dictionary::HoldsObjects() const
{
    return keys_.retain == RetainObject && values_.retain == RetainObject;
}

bool Dictionary::Equals(const Object& other) const
{
    const auto& second = static_cast<const Dictionary&>(other);
    if (entries_.size() != second.entries_.size())
        return false;
    return std::all_of(entries_.begin(), entries_.end(), [&](const Entry& entry) {
        const void* value = second.Find(entry.key);
        return value && (value == entry.value || (values_.equal && values_.equal(entry.value, value)));
    });
}

bool Array::Equals(const Object& other) const
{
    const auto& second = static_cast<const Array&>(other);
    return std::equal(values_.begin(), values_.end(), second.values_.begin(), second.values_.end(),
                      [](const auto& a, const auto& b) { return CFEqual(a.Get(), b.Get()) != 0; });
}

extern "C" {

// No description: nothing here prints objects.
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {0,       RetainObject, ReleaseObject,
                                                                nullptr, CFEqual,      CFHash};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0, RetainObject, ReleaseObject, nullptr, CFEqual};

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex, const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks)
{
    return ToMutableRef<CFMutableDictionaryRef>(New<Dictionary>(keyCallBacks, valueCallBacks));
}

CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef, CFIndex, CFDictionaryRef theDict)
{
    return ToMutableRef<CFMutableDictionaryRef>(New<Dictionary>(As<Dictionary>(theDict)));
}

void CFDictionaryAddValue(CFMutableDictionaryRef theDict, const void* key, const void* value)
{
    AsMutable<Dictionary>(theDict).Add(key, value);
}

const void* CFDictionaryGetValue(CFDictionaryRef theDict, const void* key)
{
    return As<Dictionary>(theDict).Find(key);
}

CFIndex CFDictionaryGetCount(CFDictionaryRef theDict)
{
    return static_cast<CFIndex>(As<Dictionary>(theDict).Entries().size());
}

CFIndex CFArrayGetCount(CFArrayRef theArray)
{
    return static_cast<CFIndex>(As<Array>(theArray).Values().size());
}

const void* CFArrayGetValueAtIndex(CFArrayRef theArray, CFIndex idx)
{
    const auto& values = As<Array>(theArray).Values();
    if (idx < 0 || static_cast<size_t>(idx) >= values.size())
        Trap();
    return values[static_cast<size_t>(idx)].Get();
}

CFIndex CFDataGetLength(CFDataRef theData)
{
    return static_cast<CFIndex>(As<Data>(theData).Bytes().size());
}

const UInt8* CFDataGetBytePtr(CFDataRef theData)
{
    const std::string& bytes = As<Data>(theData).Bytes();
    return bytes.empty() ? nullptr : reinterpret_cast<const UInt8*>(bytes.data());
}

}  // extern "C"
