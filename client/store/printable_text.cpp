// client/store/printable_text.cpp: text in which nothing is left that a terminal would obey.
#include "client/store/printable_text.h"

#include <unicode/uchar.h>

#include <array>
#include <cstdio>

#include "client/store/utf8_reader.h"

namespace pavex {

namespace {

void Append(UChar32 c, std::string* utf8)
{
    std::array<uint8_t, U8_MAX_LENGTH> bytes{};
    size_t length = 0;
    U8_APPEND_UNSAFE(bytes.data(), length, c);
    utf8->append(reinterpret_cast<const char*>(bytes.data()), length);
}

bool EndsLine(UChar32 c)
{
    const int8_t type = u_charType(c);
    return type == U_CONTROL_CHAR || type == U_LINE_SEPARATOR || type == U_PARAGRAPH_SEPARATOR;
}

// Some format characters are signs of their script that are seen.
bool IsInvisible(UChar32 c)
{
    return u_charType(c) == U_FORMAT_CHAR && c != kJoiner && c != kNonJoiner &&
           u_hasBinaryProperty(c, UCHAR_PREPENDED_CONCATENATION_MARK) == 0;
}

}  // namespace

std::string PrintableLine(std::string_view utf8)
{
    std::string line;
    line.reserve(utf8.size());
    for (size_t at = 0; at < utf8.size();)
        if (const UChar32 c = NextCharacter(utf8, &at); !IsInvisible(c))
            Append(EndsLine(c) ? UChar32{' '} : c, &line);
    return line;
}

std::string PrintableLines(std::string_view utf8)
{
    std::string lines;
    for (size_t end = utf8.find('\n'); end != utf8.npos; end = utf8.find('\n')) {
        lines.append(PrintableLine(utf8.substr(0, end))) += '\n';
        utf8.remove_prefix(end + 1);
    }
    return lines += PrintableLine(utf8);
}

std::string EscapeUnprintable(std::string_view json)
{
    std::string escaped;
    escaped.reserve(json.size());
    for (size_t at = 0; at < json.size();) {
        const UChar32 c = NextCharacter(json, &at);
        if (c < 0x7F || (!EndsLine(c) && !IsInvisible(c))) {
            Append(c, &escaped);
            continue;
        }
        std::array<char, 16> text{};
        if (c > 0xFFFF)
            (void)std::snprintf(text.data(), text.size(), "\\u%04x\\u%04x", static_cast<unsigned>(U16_LEAD(c)),
                                static_cast<unsigned>(U16_TRAIL(c)));
        else
            (void)std::snprintf(text.data(), text.size(), "\\u%04x", static_cast<unsigned>(c));
        escaped += text.data();
    }
    return escaped;
}

}  // namespace pavex
