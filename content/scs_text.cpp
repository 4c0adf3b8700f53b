// content/scs_text.cpp: cuts and widens text in the store's character set.
// SCS is CESU-8: one to three bytes a character, and two times three for one above U+FFFF, whose first
// half begins with ED A0 to ED AF.
#include "content/scs_text.h"

#include <algorithm>

#include "content/buffers.h"

namespace {

constexpr size_t kHalfBytes = 3;

unsigned ByteAt(const char* text, size_t index)
{
    return static_cast<unsigned char>(text[index]);
}

bool EndsInFirstHalf(const char* text, size_t length)
{
    return length >= kHalfBytes && ByteAt(text, length - 3) == 0xED && (ByteAt(text, length - 2) & 0xF0) == 0xA0 &&
           (ByteAt(text, length - 1) & 0xC0) == 0x80;
}

// Bytes of the last code unit that are there without its end; 0 when it is whole.
size_t OpenUnitBytes(const char* text, size_t length)
{
    for (size_t back = 1; back <= kHalfBytes && back <= length; ++back) {
        const unsigned byte = ByteAt(text, length - back);
        if ((byte & 0xC0) == 0x80)
            continue;
        const size_t needed = byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
        return back < needed ? back : 0;
    }
    return 0;
}

}  // namespace

size_t WholeScsBytes(const char* text, size_t length)
{
    const size_t whole = length - OpenUnitBytes(text, length);
    return EndsInFirstHalf(text, whole) ? whole - kHalfBytes : whole;
}

CString WideFromScs(const char* text, WORD length, WORD maxBytes)
{
    const WORD bytes = OSTranslate(kTranslateScsToUtf16, text, length, wBuffer, maxBytes);
    const int units = bytes / static_cast<int>(sizeof(wBuffer[0]));
    // A count of 0 asks CString to look for the end itself.
    return units == 0 ? CString() : CString(wBuffer, units);
}

void BreaksToBlanks(char* text, WORD length)
{
    std::replace(text, text + length, '\0', ' ');
}

char AsciiLower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool SameWithoutCase(std::string_view one, std::string_view other)
{
    return std::ranges::equal(one, other, {}, AsciiLower, AsciiLower);
}
