// client/store/value_text.h: the text form of item values.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "client/store/note.h"
#include "platform/store.h"

namespace pavex {

// The shortest decimal text that reads back as the same number, ASCII; none for what is no number.
std::optional<std::string> TextOfNumber(double number);

// All values of an item in their text form, SCS, with `separator` between them; texts as they stand,
// line breaks included.  Empty for rich text, formulas and damaged values.
std::string TextOfItem(const Item& item, std::string_view separator);

}  // namespace pavex
