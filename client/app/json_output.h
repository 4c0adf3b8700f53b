// client/app/json_output.h: JSON as the program prints it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace pavex {

// The text of a value, without a line end.  Characters that a terminal would obey stand as escapes; what is no
// UTF-8 becomes U+FFFD.  indent: blanks a level; -1: all on one line.
std::string TextOfJson(const nlohmann::ordered_json& json, int indent = -1);

}  // namespace pavex
