// client/import/calendar_text.h: a component of a calendar file as text that a strict parser takes.
#pragma once

#include <cstdint>
#include <string>

namespace pavex {

// The bytes [start, end) of a file with folds undone, in UTF-8, without NUL bytes and without attached files; what
// older programs write (quoted-printable values, rules with parts of their own) in today's form.
//   shortened  set when a line was too long and only its first part was taken.
std::string CalendarText(int descriptor, uint64_t start, uint64_t end, bool* shortened);

}  // namespace pavex
