// client/import/words.h: words of file formats, which are ASCII and compared without regard to case.
#pragma once

#include <string>
#include <string_view>

namespace pavex {

bool SameWord(std::string_view a, std::string_view b);
bool BeginsWithWord(std::string_view text, std::string_view word);
bool EndsWithWord(std::string_view text, std::string_view word);
std::string UpperWord(std::string_view text);
// Without blanks and line ends at both ends.
std::string_view TrimmedText(std::string_view text);

}  // namespace pavex
