// client/foundation/unicode.h: strict conversion between UTF-8 and UTF-16.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace pavex::cf {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

constexpr bool IsHighSurrogate(char32_t c)
{
    return c >= 0xD800 && c <= 0xDBFF;
}
constexpr bool IsLowSurrogate(char32_t c)
{
    return c >= 0xDC00 && c <= 0xDFFF;
}
constexpr bool IsSurrogate(char32_t c)
{
    return c >= 0xD800 && c <= 0xDFFF;
}

// The code point at text[*index], *index moved behind it; a lone surrogate comes back as itself.
char32_t NextCodePoint(std::u16string_view text, size_t* index);

// How many bytes UTF-8 takes for a code point: 1 to 4.
constexpr size_t Utf8Length(char32_t c)
{
    return c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
}
// Writes a code point that is no surrogate; returns the bytes written, at most 4.
size_t PutUtf8(char32_t c, char* out);
void AppendUtf8(char32_t c, std::string* out);
void AppendUtf16(char32_t c, std::u16string* out);

// Appends the text up to its first malformed sequence (truncated, overlong, surrogate, above U+10FFFF)
// and returns the number of bytes taken: utf8.size() when all is well.
size_t DecodeUtf8(std::string_view utf8, std::u16string* out);
// Nothing when there is a lone surrogate.
std::optional<std::string> EncodeUtf8(std::u16string_view text);

}  // namespace pavex::cf
