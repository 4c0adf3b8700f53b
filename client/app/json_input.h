// client/app/json_input.h: JSON values from a stream: one value, or one a line.
#pragma once

#include <functional>
#include <istream>
#include <nlohmann/json.hpp>
#include <string>

namespace pavex {

// Calls back with each value and the number of the line (from 1) it starts on, or with what is wrong there
// and a discarded value; false from the callback ends the reading.  A value a line is read line by line,
// so that a file of any size passes; a single value may stand on many lines.  Blank lines are passed over.
using JsonCallback = std::function<bool(const nlohmann::ordered_json& value, size_t line, const std::string& error)>;
void ReadJsonValues(std::istream& input, const JsonCallback& callback);

}  // namespace pavex
