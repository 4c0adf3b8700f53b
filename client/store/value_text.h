// client/store/value_text.h: the text form of item values.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "client/store/note.h"
#include "platform/store.h"

namespace pavex {

// The shortest decimal text that reads back as the same number, ASCII; none for what is no number.
std::optional<std::string> TextOfNumber(double number);

// All values of an item in their text form, SCS, with `separator` between them; texts as they stand,
// line breaks included.  Empty for rich text, formulas and damaged values.
std::string TextOfItem(const Item& item, std::string_view separator);
// The same for a value without its type word.
std::string TextOfValue(uint16_t type, std::string_view value, std::string_view separator);
// The entries of a text list's value, SCS; false when it is damaged.  They point into the value.
bool ReadTextList(std::string_view value, std::vector<std::string_view>* entries);
// Reads a number or time range's single values, those of its ranges left out.
std::vector<double> ReadNumbers(uint16_t type, std::string_view value);
std::vector<TIMEDATE> ReadTimes(uint16_t type, std::string_view value);

}  // namespace pavex
