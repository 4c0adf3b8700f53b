// content/value_text.h: item values, their type word first, as the join of ParseMultiLineVLTText takes them.
#pragma once

#include <cstddef>
#include <cstring>

#include "platform/store.h"

inline bool IsTextual(WORD type)
{
    return (type & ~1) == kTypeText;
}

// The WORD at unaligned bytes.
inline WORD WordAt(const char* bytes)
{
    WORD word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// Joins a text or text-list value that is in memory: `bytes` of it at `content`, without the type word.
// Results as ParseMultiLineVLTText's.  Entries that reach past the value's end are left out.
WORD JoinTextValue(WORD type, const char* content, size_t bytes, char* buffer, WORD size, int joinMode);
