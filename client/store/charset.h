// client/store/charset.h: the store's character set and the three others it meets.
// SCS is CESU-8: like UTF-8, but a character above U+FFFF is two three-byte surrogates.
#pragma once

#include <string>
#include <string_view>

namespace pavex {

// Whole-string conversions; malformed input becomes U+FFFD, nothing is ever refused.
std::string ScsFromUtf8(std::string_view utf8);
std::string Utf8FromScs(std::string_view scs);
std::u16string Utf16FromScs(std::string_view scs);
std::string ScsFromUtf16(std::u16string_view utf16);

// Most bytes of `scs`, at most maxBytes, that end between characters (a surrogate pair is one).
size_t ScsPrefix(std::string_view scs, size_t maxBytes);

}  // namespace pavex
