// tests/support/translations.cpp: the shipped translations, read as a translator wrote them.
#include "tests/support/translations.h"

#include <gtest/gtest.h>

#include <cctype>
#include <regex>
#include <sstream>

#include "tests/support/temporary_directory.h"

namespace {

struct WideRange {
    char32_t first, last;
};
constexpr WideRange kWide[] = {{0x1100, 0x115F}, {0x2E80, 0xA4CF}, {0xAC00, 0xD7A3}, {0xF900, 0xFAFF},
                               {0xFE30, 0xFE6F}, {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6}, {0x1F300, 0x1FAFF}};

// The character at *at, which moves behind it; 0 for malformed UTF-8.
char32_t TakeCharacter(const std::string& utf8, size_t* at)
{
    const auto lead = static_cast<unsigned char>(utf8[(*at)++]);
    if (lead < 0x80)
        return lead;
    const int more = lead >= 0xF0 && lead < 0xF5 ? 3 : lead >= 0xE0 && lead < 0xF0 ? 2 : lead >= 0xC2 ? 1 : 0;
    if (more == 0 || lead >= 0xF5)
        return 0;
    char32_t character = lead & (0x3FU >> more);
    for (int i = 0; i < more; ++i) {
        if (*at == utf8.size() || (static_cast<unsigned char>(utf8[*at]) & 0xC0) != 0x80)
            return 0;
        character = character << 6 | (static_cast<unsigned char>(utf8[(*at)++]) & 0x3FU);
    }
    return character;
}

using Strings = std::vector<std::string>;

// Everywhere typographic apostrophes, quotes and ellipses.
const Strings kNowhere = {"'", "\\\"", "...", "  "};
const Strings kFullWidth = {": ", ", ", ". ", "?", "!", ";", "(", ")"};
const std::map<std::string, Strings> kNeverWritten = {
    {"de", {" %%", " …", "d%%", "«", "»"}},
    {"es", {" %%", "d%%", "“", "„"}},
    {"fr", {" :", " ;", " ?", " !", " %%", "d%%", "« ", " »", "“", "„"}},
    {"ja", kFullWidth},
    {"zh-Hans", kFullWidth},
};

}  // namespace

std::string TableFile(const std::string& language, const std::string& table)
{
    return TORVIK_SOURCE_DIR "/resources/" + language + ".lproj/" + table + ".strings";
}

std::map<std::string, std::string> ReadTable(const std::string& language, const std::string& table)
{
    std::string content = ReadWholeFile(TableFile(language, table));
    content = std::regex_replace(content, std::regex("/\\*[^*]*\\*/"), "");
    const std::regex entry("\"([0-9a-z.-]+)\" = \"(.*)\";");
    std::map<std::string, std::string> texts;
    std::istringstream lines(content);
    for (std::string line; std::getline(lines, line);) {
        std::smatch parts;
        if (line.empty())
            continue;
        if (!std::regex_match(line, parts, entry) || !texts.emplace(parts[1], parts[2]).second)
            ADD_FAILURE() << language << " " << table << ": " << line;
    }
    return texts;
}

size_t Columns(const std::string& utf8)
{
    size_t columns = 0;
    for (size_t at = 0; at < utf8.size();) {
        const char32_t character = TakeCharacter(utf8, &at);
        EXPECT_NE(character, U'\0') << utf8;
        ++columns;
        for (const WideRange& wide : kWide)
            columns += character >= wide.first && character <= wide.last;
    }
    return columns;
}

std::multiset<char> AccessKeys(const std::string& text)
{
    std::multiset<char> keys;
    for (size_t at = text.find('&'); at != std::string::npos; at = text.find('&', at + 2)) {
        if (at + 1 == text.size())
            keys.insert('\0');  // a mark of nothing
        else if (text[at + 1] != '&')
            keys.insert(static_cast<char>(std::tolower(static_cast<unsigned char>(text[at + 1]))));
    }
    return keys;
}

std::string BadPunctuation(const std::string& language, const std::string& text)
{
    Strings never = kNowhere;
    never.insert(never.end(), kNeverWritten.at(language).begin(), kNeverWritten.at(language).end());
    for (const std::string& sign : never) {
        if (text.find(sign) != std::string::npos)
            return sign;
    }
    return {};
}
