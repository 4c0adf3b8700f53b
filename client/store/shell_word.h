// client/store/shell_word.h: paths in commands that users paste into a shell.
#pragma once

#include <string>
#include <string_view>

namespace pavex {

// The text as one word of a POSIX shell: as it is, or in single quotes where the shell would read it otherwise.
std::string ShellWord(std::string_view text);

}  // namespace pavex
