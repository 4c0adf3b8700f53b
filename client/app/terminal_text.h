// client/app/terminal_text.h: text as it may go to a terminal: nothing in it moves, hides or turns round what
// stands there, and no line is wider than the screen.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "client/store/printable_text.h"

namespace pavex {

// Whether the terminal, as TERM names it, can only print.
bool IsDumbTerminal();

// Whether what goes to standard output may stand out: it is a terminal that can do more than print, and NO_COLOR is
// not set.
bool WantsColor();

// How wide the terminal of a descriptor is, in columns; 0 when it is none: lines are as long as they are.
size_t TerminalColumns(int descriptor = STDOUT_FILENO);

// The columns that a text takes at most: wide characters count two, accents and a terminal's sequences (those that
// begin with ESC [) nothing.
size_t ColumnsOf(std::string_view utf8);

// A line over as many as it takes, broken at blanks, between characters of scripts without them, or anywhere in what
// is too long by itself; the further ones begin with `indent` blanks.  columns 0: no limit.  No line end at the end.
std::string WrapLine(std::string_view utf8, size_t columns, size_t indent);
// The same with the first line indented, too.
std::string IndentLine(std::string_view utf8, size_t columns, size_t indent);

// The line itself where it fits; else as much of its end as does, behind an ellipsis.
std::string EndOfLine(std::string_view utf8, size_t columns);

}  // namespace pavex
