// client/app/note_target.h: which note a user means.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace pavex {

// A URL as it stands, or that of a result of the last search by its number.  None, with *error, when there is no such
// result.
std::optional<std::string> UrlOfTarget(const std::string& target, std::string* error);
// A note id in decimal; none for what is none.
std::optional<uint32_t> NoteIdFromText(const std::string& text);

}  // namespace pavex
