// client/import/vcard_line.h: one line of a vCard ("item1.TEL;TYPE=work:+1 234") and the text of its value.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "client/import/words.h"

namespace pavex {

struct CardParameter {
    std::string name;   // upper case
    std::string value;  // as it stands, without quotes; several are joined by commas
};

struct CardProperty {
    std::string group;  // upper case; empty: none
    std::string name;   // upper case
    std::vector<CardParameter> parameters;
    std::string value;  // bytes as they stand

    // First parameter of the name; empty when there is none.
    std::string_view Parameter(std::string_view parameterName) const;
};

// Reads an unfolded line.  A parameter without a name, as version 2.1 writes them, is named for what it is:
// ENCODING, VALUE or else TYPE.  False when it is no property: no colon, or no name before it.
bool ReadCardLine(std::string_view line, CardProperty* property);

// The value as UTF-8: transfer encoding and charset undone, still with its escapes.  Empty for a value that
// is no text though it was encoded as binary.
std::string DecodedValue(const CardProperty& property);

// Text without escapes: "\n" is a line break; "\," and the like stand for the character.
std::string UnescapedText(std::string_view text);
// The components of a value between separators that are not escaped, each without escapes, trimmed.
std::vector<std::string> SplitCardText(std::string_view text, char separator);

}  // namespace pavex
