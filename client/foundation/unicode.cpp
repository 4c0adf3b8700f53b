// client/foundation/unicode.cpp: strict conversion between UTF-8 and UTF-16.
#include "client/foundation/unicode.h"

namespace pavex::cf {

namespace {

// The well-formed sequences by their first byte.  The bounds of the second byte are what keeps overlong
// forms, surrogates and code points above U+10FFFF out; further bytes are always 80..BF.
struct LeadRow {
    unsigned char first, last;  // range of the first byte
    unsigned char length;       // bytes in all
    unsigned char low, high;    // range of the second byte
    unsigned char mask;         // payload bits of the first byte
};
constexpr LeadRow kLeads[] = {
    {0xC2, 0xDF, 2, 0x80, 0xBF, 0x1F}, {0xE0, 0xE0, 3, 0xA0, 0xBF, 0x0F}, {0xE1, 0xEC, 3, 0x80, 0xBF, 0x0F},
    {0xED, 0xED, 3, 0x80, 0x9F, 0x0F}, {0xEE, 0xEF, 3, 0x80, 0xBF, 0x0F}, {0xF0, 0xF0, 4, 0x90, 0xBF, 0x07},
    {0xF1, 0xF3, 4, 0x80, 0xBF, 0x07}, {0xF4, 0xF4, 4, 0x80, 0x8F, 0x07},
};

unsigned char ByteAt(std::string_view bytes, size_t index)
{
    return static_cast<unsigned char>(bytes[index]);
}

// The multi-byte sequence at `bytes`; its length, or 0 when it is malformed.
size_t DecodeSequence(std::string_view bytes, char32_t* c)
{
    const unsigned char first = ByteAt(bytes, 0);
    for (const LeadRow& row : kLeads) {
        if (first < row.first || first > row.last)
            continue;
        if (bytes.size() < row.length || ByteAt(bytes, 1) < row.low || ByteAt(bytes, 1) > row.high)
            return 0;
        *c = first & row.mask;
        for (size_t i = 1; i < row.length; ++i) {
            if ((ByteAt(bytes, i) & 0xC0) != 0x80)
                return 0;
            *c = (*c << 6) | (ByteAt(bytes, i) & 0x3Fu);
        }
        return row.length;
    }
    return 0;
}

}  // namespace

char32_t NextCodePoint(std::u16string_view text, size_t* index)
{
    const char32_t first = text[(*index)++];
    if (!IsHighSurrogate(first) || *index == text.size() || !IsLowSurrogate(text[*index]))
        return first;
    const char32_t second = text[(*index)++];
    return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

size_t PutUtf8(char32_t c, char* out)
{
    const size_t length = Utf8Length(c);
    if (length == 1) {
        out[0] = static_cast<char>(c);
        return 1;
    }
    constexpr unsigned kLeadBits[] = {0, 0, 0xC0, 0xE0, 0xF0};
    for (size_t i = length - 1; i > 0; --i, c >>= 6)
        out[i] = static_cast<char>(0x80 | (c & 0x3F));
    out[0] = static_cast<char>(kLeadBits[length] | c);
    return length;
}

void AppendUtf8(char32_t c, std::string* out)
{
    char bytes[4];
    out->append(bytes, PutUtf8(c, bytes));
}

void AppendUtf16(char32_t c, std::u16string* out)
{
    if (c < 0x10000) {
        out->push_back(static_cast<char16_t>(c));
        return;
    }
    out->push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
    out->push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
}

size_t DecodeUtf8(std::string_view utf8, std::u16string* out)
{
    out->reserve(out->size() + utf8.size());
    size_t i = 0;
    while (i < utf8.size()) {
        char32_t c = ByteAt(utf8, i);
        size_t length = 1;
        if (c >= 0x80 && (length = DecodeSequence(utf8.substr(i), &c)) == 0)
            return i;
        AppendUtf16(c, out);
        i += length;
    }
    return i;
}

std::optional<std::string> EncodeUtf8(std::u16string_view text)
{
    std::string out;
    out.reserve(text.size() * 3);
    for (size_t i = 0; i < text.size();) {
        const char32_t c = NextCodePoint(text, &i);
        if (IsSurrogate(c))
            return std::nullopt;
        AppendUtf8(c, &out);
    }
    return out;
}

}  // namespace pavex::cf
