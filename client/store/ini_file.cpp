// client/store/ini_file.cpp: ini text as a whole: sections, variables, comments.
#include "client/store/ini_file.h"

#include <strings.h>

#include <algorithm>
#include <charconv>
#include <cstdio>

#define SI_NO_CONVERSION
#include <SimpleIni.h>

namespace pavex {

namespace {

struct EscapeRow {
    char character;
    char letter;
};
constexpr EscapeRow kEscapes[] = {{'\n', 'n'}, {'\r', 'r'}, {'\t', 't'}, {'"', '"'}, {'\\', '\\'}};

bool IsControl(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

bool NeedsQuotes(std::string_view value)
{
    if (value.empty())
        return false;
    return value.front() == ' ' || value.back() == ' ' || value.front() == '"' ||
           std::any_of(value.begin(), value.end(), IsControl);
}

void AppendEscaped(std::string* written, char c)
{
    for (const EscapeRow& row : kEscapes) {
        if (row.character == c) {
            *written += '\\';
            *written += row.letter;
            return;
        }
    }
    if (!IsControl(c)) {
        *written += c;
        return;
    }
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
    *written += escape;
}

// Takes one escape, behind its backslash, off the text.
bool ReadEscape(std::string_view* text, char* c)
{
    if (text->empty())
        return false;
    const char letter = text->front();
    text->remove_prefix(1);
    for (const EscapeRow& row : kEscapes) {
        if (row.letter == letter) {
            *c = row.character;
            return true;
        }
    }
    unsigned code = 0;
    if (letter != 'x' || text->size() < 2)
        return false;
    const auto [end, error] = std::from_chars(text->data(), text->data() + 2, code, 16);
    if (error != std::errc{} || end != text->data() + 2)
        return false;
    *c = static_cast<char>(code);
    text->remove_prefix(2);
    return true;
}

// A name is what stands before the first '=' of a line that is no comment and no section.
bool IsName(std::string_view name)
{
    constexpr std::string_view kNotFirst = ";#[";
    return !name.empty() && name.find('=') == std::string_view::npos && name.front() != ' ' && name.back() != ' ' &&
           kNotFirst.find(name.front()) == std::string_view::npos && std::none_of(name.begin(), name.end(), IsControl);
}

}  // namespace

bool NoCaseLess::operator()(std::string_view a, std::string_view b) const
{
    const int order = strncasecmp(a.data(), b.data(), std::min(a.size(), b.size()));
    return order != 0 ? order < 0 : a.size() < b.size();
}

std::string QuoteValue(std::string_view value)
{
    if (!NeedsQuotes(value))
        return std::string(value);
    std::string written = "\"";
    for (const char c : value)
        AppendEscaped(&written, c);
    return written + '"';
}

std::string UnquoteValue(std::string_view written)
{
    if (written.size() < 2 || written.front() != '"' || written.back() != '"')
        return std::string(written);
    std::string value;
    for (std::string_view rest = written.substr(1, written.size() - 2); !rest.empty();) {
        char c = rest.front();
        rest.remove_prefix(1);
        if (c == '"' || (c == '\\' && !ReadEscape(&rest, &c)))
            return std::string(written);
        value += c;
    }
    return value;
}

struct IniText::Parsed {
    // Text in UTF-8, one value a name, one line a value.
    CSimpleIniA ini{true, false, false};
};

IniText::IniText(std::string_view bytes) : parsed_(std::make_unique<Parsed>())
{
    std::string text(bytes);
    std::erase(text, '\0');  // a reader of C text would take one for the end of the file
    parsed_->ini.SetSpaces(false);
    (void)parsed_->ini.LoadData(text);  // its only failures are those of memory, for which nothing is kept
}

IniText::~IniText() = default;

bool IniText::HasSection(const std::string& section) const
{
    return parsed_->ini.SectionExists(section.c_str());
}

VariableMap IniText::Variables(const std::string& section) const
{
    VariableMap variables;
    CSimpleIniA::TNamesDepend names;
    parsed_->ini.GetAllKeys(section.c_str(), names);
    for (const auto& name : names) {
        const char* const value = parsed_->ini.GetValue(section.c_str(), name.pItem, "");
        variables.emplace(name.pItem, UnquoteValue(value));
    }
    return variables;
}

bool IniText::Set(const std::string& section, const std::string& name, std::string_view value)
{
    if (!IsName(name))
        return false;
    return parsed_->ini.SetValue(section.c_str(), name.c_str(), QuoteValue(value).c_str()) >= 0;
}

void IniText::Remove(const std::string& section, const std::string& name)
{
    parsed_->ini.Delete(section.c_str(), name.c_str(), false);
}

std::string IniText::Text() const
{
    std::string text;
    (void)parsed_->ini.Save(text);  // into memory: cannot fail
    if (text.starts_with("\xEF\xBB\xBF"))
        text.insert(0, "\n");  // the first name starts like a signature, which a reader would take off
    return text;
}

}  // namespace pavex
