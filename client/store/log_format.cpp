// client/store/log_format.cpp: texts with places for arguments, as the log's string table has them.
#include "client/store/log_format.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace pavex {

namespace {

constexpr std::string_view kKinds = "sduXT";
constexpr size_t kMostArguments = 32;

// A place, behind its percent sign.
struct Place {
    size_t argument = 0;  // 0: the next one
    char kind = 0;
};

bool ReadPlace(std::string_view* text, Place* place)
{
    size_t digits = 0;
    for (; digits < text->size() && (*text)[digits] >= '0' && (*text)[digits] <= '9' && digits < 3; ++digits)
        place->argument = place->argument * 10 + static_cast<size_t>((*text)[digits] - '0');
    if (digits > 0) {
        if (digits >= text->size() || (*text)[digits] != '$' || place->argument == 0)
            return false;
        text->remove_prefix(digits + 1);
    }
    if (text->empty() || kKinds.find(text->front()) == std::string_view::npos)
        return false;
    place->kind = text->front();
    text->remove_prefix(1);
    return true;
}

// False when the argument is known as another kind.
bool NoteKind(std::string* kinds, size_t argument, char kind)
{
    if (argument > kMostArguments)
        return false;
    if (kinds->size() < argument)
        kinds->resize(argument, 0);
    char& known = (*kinds)[argument - 1];
    if (known != 0 && known != kind)
        return false;
    known = kind;
    return true;
}

}  // namespace

std::optional<LogFormat> LogFormat::Parse(std::string_view text)
{
    LogFormat format;
    size_t unnamed = 0;
    bool named = false;
    Part part;
    while (!text.empty()) {
        const size_t percent = std::min(text.find('%'), text.size());
        part.literal += text.substr(0, percent);
        text.remove_prefix(percent);
        if (text.empty())
            break;
        text.remove_prefix(1);
        if (text.starts_with('%')) {
            part.literal += '%';
            text.remove_prefix(1);
            continue;
        }
        Place place;
        if (!ReadPlace(&text, &place))
            return std::nullopt;
        named = named || place.argument != 0;
        part.argument = place.argument != 0 ? place.argument : ++unnamed;
        if ((named && unnamed > 0) || !NoteKind(&format.kinds_, part.argument, place.kind))
            return std::nullopt;
        format.parts_.push_back(std::exchange(part, {}));
    }
    format.parts_.push_back(part);
    if (format.kinds_.find('\0') != std::string::npos)
        return std::nullopt;
    return format;
}

std::string LogFormat::Fill(const std::vector<std::string>& arguments) const
{
    std::string text;
    for (const Part& part : parts_) {
        text += part.literal;
        if (part.argument != 0 && part.argument <= arguments.size())
            text += arguments[part.argument - 1];
    }
    return text;
}

std::string OneLine(std::string_view utf8)
{
    std::string line;
    for (size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        // U+0080 to U+009F are control characters too: C2 and the byte itself.
        const bool upperControl = byte == 0xC2 && i + 1 < utf8.size() && static_cast<unsigned char>(utf8[i + 1]) < 0xA0;
        if (byte == '\n' || byte == '\t') {
            line += byte == '\n' ? "\\n" : "\\t";
        } else if (byte < 0x20 || byte == 0x7F || upperControl) {
            char escape[8];
            const auto code = static_cast<unsigned>(upperControl ? static_cast<unsigned char>(utf8[++i]) : byte);
            std::snprintf(escape, sizeof escape, "\\x%02X", code);
            line += escape;
        } else {
            line += utf8[i];
        }
    }
    return line;
}

}  // namespace pavex
