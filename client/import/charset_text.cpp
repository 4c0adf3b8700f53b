// client/import/charset_text.cpp: which converter stands for which declared name, and what is done when
// the declaration is of no use.
#include "client/import/charset_text.h"

#include <algorithm>
#include <cstdint>
#include <memory>

#include <unicode/ucnv.h>
#include <unicode/ustring.h>

namespace pavex {
namespace {

// Names that mail uses for more than the standard set of that name, or that no converter knows.
struct CharsetAlias {
    const char* declared;   // lower case
    const char* converter;  // empty: as if nothing were declared
};
constexpr CharsetAlias kAliases[] = {
    {"us-ascii", ""},
    {"ascii", ""},
    {"ansi_x3.4-1968", ""},
    {"iso646-us", ""},
    {"646", ""},
    {"unknown-8bit", ""},
    {"unknown", ""},
    {"x-unknown", ""},
    {"8bit", ""},
    {"7bit", ""},
    {"binary", ""},
    {"default", ""},
    {"none", ""},
    {"utf8", "utf-8"},
    {"utf-8mb4", "utf-8"},
    {"unicode-1-1-utf-8", "utf-8"},
    {"unicode-1-1-utf-7", "utf-7"},
    {"latin1", "windows-1252"},
    {"latin-1", "windows-1252"},
    {"iso-8859-1", "windows-1252"},
    {"iso8859-1", "windows-1252"},
    {"iso_8859-1", "windows-1252"},
    {"cp-1252", "windows-1252"},
    {"cp1252", "windows-1252"},
    {"ansi", "windows-1252"},
    {"iso-8859-8-i", "iso-8859-8"},
    {"iso-8859-8-e", "iso-8859-8"},
    {"iso-8859-6-i", "iso-8859-6"},
    {"iso-8859-9", "windows-1254"},
    {"iso-8859-11", "windows-874"},
    {"tis-620", "windows-874"},
    {"gb2312", "gb18030"},
    {"gb_2312-80", "gb18030"},
    {"gbk", "gb18030"},
    {"cp936", "gb18030"},
    {"x-gbk", "gb18030"},
    {"euc-cn", "gb18030"},
    {"ks_c_5601-1987", "windows-949"},
    {"ks_c_5601-1989", "windows-949"},
    {"ks_c_5601", "windows-949"},
    {"ksc5601", "windows-949"},
    {"euc-kr", "windows-949"},
    {"cp949", "windows-949"},
    {"shift_jis", "windows-932"},
    {"shift-jis", "windows-932"},
    {"sjis", "windows-932"},
    {"x-sjis", "windows-932"},
    {"ms_kanji", "windows-932"},
    {"big5", "windows-950"},
    {"x-x-big5", "windows-950"},
    {"hz-gb-2312", "HZ"},
    {"x-mac-roman", "macintosh"},
};

struct ConverterCloser {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using ConverterOwner = std::unique_ptr<UConverter, ConverterCloser>;

std::string CanonicalName(std::string_view charset)
{
    std::string name;
    for (const char c : charset) {
        if (c > ' ' && c != '"' && c != '\'' && c < 0x7F && name.size() < 60)
            name += (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c;
    }
    for (const CharsetAlias& alias : kAliases) {
        if (name == alias.declared)
            return alias.converter;
    }
    return name;
}

ConverterOwner OpenConverter(const std::string& name)
{
    if (name.empty())
        return nullptr;
    UErrorCode status = U_ZERO_ERROR;
    ConverterOwner converter(ucnv_open(name.c_str(), &status));
    return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

// Whole conversion to UTF-8.  *replaced counts the U+FFFD that stand for what could not be decoded.
std::string Convert(std::string_view bytes, UConverter* converter, size_t* replaced)
{
    std::string utf8;
    utf8.reserve(bytes.size() + bytes.size() / 2);
    const char* source = bytes.data();
    const char* const end = source + bytes.size();
    constexpr int32_t kUnits = 4096;
    char16_t units[kUnits] = {};
    char buffer[kUnits * 3];
    *replaced = 0;
    UErrorCode status = U_ZERO_ERROR;
    char16_t carried = 0;  // high surrogate whose other half comes with the next piece
    do {
        char16_t* target = units;
        if (carried)
            *target++ = carried;
        carried = 0;
        status = U_ZERO_ERROR;
        const char* const before = source;
        ucnv_toUnicode(converter, &target, units + kUnits, &source, end, nullptr, true, &status);
        auto count = static_cast<int32_t>(target - units);
        if (status == U_BUFFER_OVERFLOW_ERROR && count > 1 && U16_IS_LEAD(units[count - 1]))
            carried = units[--count];
        *replaced += static_cast<size_t>(std::count(units, units + count, char16_t{0xFFFD}));
        int32_t length = 0;
        UErrorCode conversion = U_ZERO_ERROR;
        u_strToUTF8WithSub(buffer, sizeof buffer, &length, units, count, 0xFFFD, nullptr, &conversion);
        if (U_SUCCESS(conversion))
            utf8.append(buffer, static_cast<size_t>(length));
        if (status == U_BUFFER_OVERFLOW_ERROR && source == before && count == 0)
            break;
    } while (status == U_BUFFER_OVERFLOW_ERROR);
    return utf8;
}

// Escapes of ISO-2022 text that are followed by another one at once.  They come from words and lines that were
// encoded one by one; the converter takes them for an attack and marks each.
std::string WithoutEmptySegments(std::string_view bytes)
{
    std::string out;
    out.reserve(bytes.size());
    for (size_t i = 0; i < bytes.size();) {
        const std::string_view rest = bytes.substr(i);
        const bool toAscii = rest.starts_with("\x1B(B") || rest.starts_with("\x1B(J");
        const bool toJapanese = rest.starts_with("\x1B$B") || rest.starts_with("\x1B$@");
        const bool empty = (toAscii || toJapanese) && rest.size() > 3 && rest[3] == '\x1B';
        if (!empty)
            out += rest[0];
        i += empty ? 3 : 1;
    }
    return out;
}

std::string ConvertBy(std::string_view bytes, const char* name)
{
    size_t replaced = 0;
    const ConverterOwner converter = OpenConverter(name);
    return converter ? Convert(bytes, converter.get(), &replaced) : std::string();
}

// Length of the well-formed UTF-8 character at the front; 0 when there is none.
size_t Utf8CharacterLength(std::string_view bytes)
{
    const auto byte = [&](size_t i) { return static_cast<uint8_t>(bytes[i]); };
    const uint8_t first = byte(0);
    if (first < 0x80)
        return 1;
    const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || bytes.size() < length)
        return 0;
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
    }
    const uint8_t second = byte(1);
    const bool bad = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
                     (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
    return bad ? 0 : length;
}

struct Utf8Census {
    size_t characters = 0;  // of more than one byte
    size_t stray = 0;       // bytes that belong to none
};

Utf8Census CountUtf8(std::string_view bytes)
{
    Utf8Census census;
    for (size_t i = 0; i < bytes.size();) {
        const size_t length = Utf8CharacterLength(bytes.substr(i, 4));
        census.characters += length > 1;
        census.stray += length == 0;
        i += std::max<size_t>(length, 1);
    }
    return census;
}

// JIS text announces itself by its shifts even where nobody declared it.
bool LooksLikeIso2022Jp(std::string_view bytes)
{
    return bytes.find("\x1B$B") != bytes.npos || bytes.find("\x1B$@") != bytes.npos;
}

std::string DecodeUndeclared(std::string_view bytes, const Utf8Census& census, std::string_view guess)
{
    if (LooksLikeIso2022Jp(bytes))
        return ConvertBy(WithoutEmptySegments(bytes), "iso-2022-jp");
    if (census.stray == 0)
        return std::string(bytes);
    const std::string guessed = CanonicalName(guess);
    if (!guessed.empty() && guessed != "utf-8") {
        if (const ConverterOwner converter = OpenConverter(guessed)) {
            size_t replaced = 0;
            std::string text = Convert(bytes, converter.get(), &replaced);
            if (replaced == 0)
                return text;
        }
    }
    // A cut or two in what is UTF-8 otherwise is not worth garbling all of it.
    return ConvertBy(bytes, census.characters > census.stray ? "utf-8" : "windows-1252");
}

}  // namespace

bool IsUtf8(std::string_view bytes)
{
    for (size_t i = 0; i < bytes.size();) {
        const size_t length = Utf8CharacterLength(bytes.substr(i, 4));
        if (length == 0)
            return false;
        i += length;
    }
    return true;
}

std::string Utf8FromBytes(std::string_view bytes, std::string_view charset, std::string_view guess)
{
    const std::string name = CanonicalName(charset);
    const Utf8Census census = CountUtf8(bytes);
    const ConverterOwner converter = name == "utf-8" ? nullptr : OpenConverter(name);
    if (!converter)
        return DecodeUndeclared(bytes, census, guess);
    if (name == "windows-1252" && census.characters > 0 && census.stray == 0)
        return std::string(bytes);  // no Latin-1 text happens to be well-formed UTF-8
    size_t replaced = 0;
    std::string text = name.starts_with("iso-2022") ? Convert(WithoutEmptySegments(bytes), converter.get(), &replaced)
                                                    : Convert(bytes, converter.get(), &replaced);
    if (replaced > 0 && census.characters > 0 && census.stray == 0)
        return std::string(bytes);
    return text;
}

bool IsKnownCharset(std::string_view charset)
{
    return OpenConverter(CanonicalName(charset)) != nullptr;
}

std::string CleanText(std::string utf8)
{
    size_t out = 0;
    for (size_t in = 0; in < utf8.size(); ++in) {
        const char c = utf8[in];
        if (c == '\r') {
            utf8[out++] = '\n';
            in += in + 1 < utf8.size() && utf8[in + 1] == '\n';
        } else {
            const bool control = static_cast<uint8_t>(c) < 0x20 || c == 0x7F;
            utf8[out++] = control && c != '\t' && c != '\n' ? ' ' : c;
        }
    }
    utf8.resize(out);
    return utf8;
}

std::string_view Utf8Prefix(std::string_view utf8, size_t maxBytes)
{
    if (utf8.size() <= maxBytes)
        return utf8;
    while (maxBytes > 0 && (static_cast<uint8_t>(utf8[maxBytes]) & 0xC0) == 0x80)
        --maxBytes;
    return utf8.substr(0, maxBytes);
}

}  // namespace pavex
