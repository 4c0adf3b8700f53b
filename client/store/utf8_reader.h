// client/store/utf8_reader.h: UTF-8, character by character.
#pragma once

#include <unicode/utf8.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pavex {

// They shape what they stand between, in scripts and in emoji, and take no room themselves.
constexpr UChar32 kNonJoiner = 0x200C;
constexpr UChar32 kJoiner = 0x200D;

// The character at a place before the end, which moves on behind it; U+FFFD for what is no UTF-8.
inline UChar32 NextCharacter(std::string_view utf8, size_t* at)
{
    const auto* const bytes = reinterpret_cast<const uint8_t*>(utf8.data());
    UChar32 c = 0;
    U8_NEXT_OR_FFFD(bytes, *at, utf8.size(), c);
    return c;
}

}  // namespace pavex
