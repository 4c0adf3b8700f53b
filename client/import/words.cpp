// client/import/words.cpp
#include "client/import/words.h"

#include <algorithm>

namespace pavex {
namespace {

char Upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

bool SameWord(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return Upper(x) == Upper(y); });
}

bool BeginsWithWord(std::string_view text, std::string_view word)
{
    return SameWord(text.substr(0, word.size()), word);
}

bool EndsWithWord(std::string_view text, std::string_view word)
{
    return text.size() >= word.size() && SameWord(text.substr(text.size() - word.size()), word);
}

std::string UpperWord(std::string_view text)
{
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), Upper);
    return upper;
}

std::string_view TrimmedText(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

}  // namespace pavex
