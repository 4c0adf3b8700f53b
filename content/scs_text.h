// content/scs_text.h: SCS text cut to a number of bytes, and widened.
#pragma once

#include <cstddef>
#include <string_view>

#include "platform/store.h"
#include "strings/cstring.h"

// Bytes of text[length] without a character that its end cuts through.  A surrogate pair is one
// character.  Looks at the last six bytes only; what is malformed otherwise is left to the conversion.
size_t WholeScsBytes(const char* text, size_t length);

// `length` bytes of SCS text as wide text, at most maxBytes (an even number is used) of UTF-16, ending
// before a character U+0000.  Uses wBuffer.
CString WideFromScs(const char* text, WORD length, WORD maxBytes);

// The store's line breaks, which are NUL bytes and would end the text there, as blanks.
void BreaksToBlanks(char* text, WORD length);

// A letter A to Z in lower case, every other byte as it is; so does no locale.
char AsciiLower(char c);
// Whether two texts are the same without regard to the case of A to Z.
bool SameWithoutCase(std::string_view one, std::string_view other);
