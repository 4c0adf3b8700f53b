// client/search/file_text.h: a small file as text.
#pragma once

#include <optional>
#include <string>

namespace pavex {

// None when it cannot be read.
std::optional<std::string> ReadFileText(const std::string& path);

}  // namespace pavex
