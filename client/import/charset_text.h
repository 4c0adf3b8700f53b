// client/import/charset_text.h: text of any declared charset as UTF-8.
// Mail declares charsets that are missing, misspelt or simply not those of the bytes; what to do then is
// decided here, for headers, bodies and file names alike.
#pragma once

#include <string>
#include <string_view>

namespace pavex {

// True for well-formed UTF-8 (no overlong forms, no surrogates, nothing above U+10FFFF).
bool IsUtf8(std::string_view bytes);

// Decodes bytes to UTF-8; never fails.
//   charset  as declared, any case, perhaps quoted; empty: none was declared.
//   guess    charset to try before windows-1252 where the declared one is no help; may be empty.
// A missing, unknown or merely ASCII or Latin-1 declaration gives way to UTF-8 where the bytes are such; a
// declared UTF-8 that is mostly not gives way to the guess.  What cannot be decoded becomes U+FFFD.
std::string Utf8FromBytes(std::string_view bytes, std::string_view charset, std::string_view guess = {});

// True when the name, after the known aliases, is a charset that can be decoded.
bool IsKnownCharset(std::string_view charset);

// Replaces what no text holds: NUL and the other control characters but tab and line feed become a space
// (escape sequences of terminals are no text either); CRLF and lone CR become line feeds.
std::string CleanText(std::string utf8);

// Text cut to at most maxBytes, between characters.
std::string_view Utf8Prefix(std::string_view utf8, size_t maxBytes);

}  // namespace pavex
