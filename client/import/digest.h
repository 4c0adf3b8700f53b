// client/import/digest.h: hashes by which an import knows again what it brought in before.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "client/store/note.h"

namespace pavex {

// SHA-256 in hex.
std::string DigestOf(std::string_view bytes);
// The same of all items but those named: equal for notes that say the same.
std::string DigestOf(const Note& note, const std::vector<std::string>& leftOut = {});

}  // namespace pavex
