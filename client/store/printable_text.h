// client/store/printable_text.h: text in which nothing is left that a terminal would obey: what moves, hides or turns
// round what stands there.
#pragma once

#include <string>
#include <string_view>

namespace pavex {

// UTF-8 on one line: control characters and line and paragraph separators become blanks; characters that show
// nothing themselves but order or hide others (the bidirectional controls, invisible marks and tags) go, but for
// the joiners that scripts and emoji are written with.  What is no UTF-8 becomes U+FFFD.
std::string PrintableLine(std::string_view utf8);

// The same of several lines: their ends, which are line feeds, stay.
std::string PrintableLines(std::string_view utf8);

// JSON text with the same characters, which stand within its strings only, as \u escapes: it means the same.
std::string EscapeUnprintable(std::string_view json);

}  // namespace pavex
