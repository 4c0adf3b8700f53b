// client/import/vcard_line.cpp: names, parameters, encodings and escapes, as strictly as cards are written.
#include "client/import/vcard_line.h"

#include <algorithm>
#include <array>

#include "client/import/charset_text.h"
#include "client/import/content_lines.h"

namespace pavex {
namespace {

// More than any card has on a line; each is looked for among those before it.
constexpr size_t kMostParameters = 50;

// What a value without a name says in version 2.1.
struct BareParameter {
    std::string_view value;
    std::string_view name;
};
constexpr BareParameter kBareParameters[] = {{"QUOTED-PRINTABLE", "ENCODING"},
                                             {"BASE64", "ENCODING"},
                                             {"B", "ENCODING"},
                                             {"8BIT", "ENCODING"},
                                             {"7BIT", "ENCODING"},
                                             {"INLINE", "VALUE"},
                                             {"URL", "VALUE"},
                                             {"URI", "VALUE"},
                                             {"CONTENT-ID", "VALUE"},
                                             {"CID", "VALUE"},
                                             {"UTF-8", "CHARSET"}};

std::string_view NameOfBare(std::string_view value)
{
    for (const BareParameter& row : kBareParameters) {
        if (SameWord(row.value, value))
            return row.name;
    }
    return "TYPE";
}

bool IsNameCharacter(char c)
{
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    return letter || (c >= '0' && c <= '9') || c == '-' || c == '_' || c == '/';
}

std::string WithoutQuotes(std::string_view text)
{
    std::string plain(TrimmedText(text));
    plain.erase(std::remove(plain.begin(), plain.end(), '"'), plain.end());
    return plain;
}

void TakeParameter(std::string_view text, CardProperty* property)
{
    if (TrimmedText(text).empty())
        return;
    const size_t equals = text.find('=');
    std::string value = WithoutQuotes(equals == text.npos ? text : text.substr(equals + 1));
    std::string name =
        equals == text.npos ? std::string(NameOfBare(value)) : UpperWord(TrimmedText(text.substr(0, equals)));
    for (CardParameter& known : property->parameters) {
        if (known.name == name) {
            known.value += "," + value;
            return;
        }
    }
    if (property->parameters.size() < kMostParameters)
        property->parameters.push_back({std::move(name), std::move(value)});
}

// Parameters stand between semicolons, which may be part of a quoted value.
void TakeParameters(std::string_view text, CardProperty* property)
{
    bool quoted = false;
    size_t start = 0;
    for (size_t i = 0; i <= text.size(); ++i) {
        if (i < text.size() && text[i] == '"')
            quoted = !quoted;
        if (i < text.size() && (quoted || text[i] != ';'))
            continue;
        TakeParameter(text.substr(start, i - start), property);
        start = i + 1;
    }
}

int Base64Digit(char c)
{
    static constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const size_t digit = kDigits.find(c);
    return digit == kDigits.npos ? -1 : static_cast<int>(digit);
}

std::string FromBase64(std::string_view text)
{
    std::string bytes;
    uint32_t bits = 0;
    int held = 0;
    for (const char c : text) {
        const int digit = Base64Digit(c);
        if (digit < 0)
            continue;
        bits = bits << 6 | static_cast<uint32_t>(digit);
        held += 6;
        if (held >= 8) {
            held -= 8;
            bytes += static_cast<char>(bits >> held & 0xFF);
        }
    }
    return bytes;
}

bool IsBinary(std::string_view bytes)
{
    return bytes.find('\0') != bytes.npos;
}

}  // namespace

std::string_view CardProperty::Parameter(std::string_view parameterName) const
{
    const auto found = std::find_if(parameters.begin(), parameters.end(),
                                    [&](const CardParameter& each) { return each.name == parameterName; });
    return found == parameters.end() ? std::string_view() : std::string_view(found->value);
}

bool ReadCardLine(std::string_view line, CardProperty* property)
{
    const size_t value = ContentValue(line);
    if (value == line.npos)
        return false;
    const std::string_view before = line.substr(0, value - 1);
    const size_t semicolon = std::min(before.find(';'), before.size());
    std::string_view name = TrimmedText(before.substr(0, semicolon));
    *property = {};
    if (const size_t dot = name.rfind('.'); dot != name.npos) {
        property->group = UpperWord(name.substr(0, dot));
        name.remove_prefix(dot + 1);
    }
    if (name.empty() || !std::all_of(name.begin(), name.end(), IsNameCharacter))
        return false;
    property->name = UpperWord(name);
    TakeParameters(before.substr(semicolon), property);
    property->value = line.substr(value);
    return true;
}

std::string DecodedValue(const CardProperty& property)
{
    const std::string_view encoding = property.Parameter("ENCODING");
    std::string bytes = property.value;
    if (SameWord(encoding, "QUOTED-PRINTABLE")) {
        bytes = FromQuotedPrintable(bytes);
    } else if (SameWord(encoding, "B") || SameWord(encoding, "BASE64")) {
        bytes = FromBase64(bytes);
        if (IsBinary(bytes))
            return {};
    }
    return CleanText(Utf8FromBytes(bytes, property.Parameter("CHARSET")));
}

std::string UnescapedText(std::string_view text)
{
    static constexpr std::string_view kEscaped = ",;:\\\"";
    std::string plain;
    plain.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const char next = text[i] == '\\' && i + 1 < text.size() ? text[i + 1] : '\0';
        const bool lineBreak = next == 'n' || next == 'N';
        const bool escaped = lineBreak || (next != '\0' && kEscaped.find(next) != kEscaped.npos);
        plain += lineBreak ? '\n' : escaped ? next : text[i];
        i += escaped ? 1 : 0;
    }
    return plain;
}

std::vector<std::string> SplitCardText(std::string_view text, char separator)
{
    std::vector<std::string> parts;
    size_t start = 0;
    for (size_t i = 0; i <= text.size(); ++i) {
        if (i + 1 < text.size() && text[i] == '\\') {
            ++i;
            continue;
        }
        if (i < text.size() && text[i] != separator)
            continue;
        parts.emplace_back(TrimmedText(UnescapedText(text.substr(start, i - start))));
        start = i + 1;
    }
    return parts;
}

}  // namespace pavex
