// content/scs_text.h: SCS text cut to a number of bytes, and widened.
#pragma once

#include <cstddef>

#include "platform/store.h"
#include "strings/cstring.h"

// Bytes of text[length] without a character that its end cuts through.  A surrogate pair is one
// character.  Looks at the last six bytes only; what is malformed otherwise is left to the conversion.
size_t WholeScsBytes(const char* text, size_t length);

// `length` bytes of SCS text as wide text, at most maxBytes (an even number is used) of UTF-16, ending
// before a character U+0000.  Uses wBuffer.
CString WideFromScs(const char* text, WORD length, WORD maxBytes);
