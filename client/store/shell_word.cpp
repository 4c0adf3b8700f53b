// client/store/shell_word.cpp: paths in commands that users paste into a shell.
#include "client/store/shell_word.h"

#include <algorithm>

namespace pavex {

namespace {

// Means itself, wherever it stands in a word.
bool IsPlain(char sign)
{
    constexpr std::string_view kPlainSigns = "/._-+,:@%";
    const auto byte = static_cast<unsigned char>(sign);
    return (sign >= 'a' && sign <= 'z') || (sign >= 'A' && sign <= 'Z') || (sign >= '0' && sign <= '9') ||
           byte >= 0x80 || kPlainSigns.find(sign) != kPlainSigns.npos;
}

}  // namespace

std::string ShellWord(std::string_view text)
{
    if (!text.empty() && std::ranges::all_of(text, IsPlain))
        return std::string(text);
    std::string word = "'";
    for (const char sign : text) {
        if (sign == '\'')
            word += "'\\'";  // out of the quotes, a quote, and in again
        word += sign;
    }
    return word + "'";
}

}  // namespace pavex
