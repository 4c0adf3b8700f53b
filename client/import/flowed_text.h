// client/import/flowed_text.h: joins the lines of format=flowed text into the paragraphs they stand for.
#pragma once

#include <string>
#include <string_view>

namespace pavex {

// text: lines ended by "\n".  A line that ends in a space flows into the next of the same quote depth; with
// deleteSpace (DelSp=yes) that space goes.  Stuffed spaces are taken off; quoted lines keep their depth as
// ">" marks and a space.  A signature separator ("-- ") never flows.
std::string JoinFlowedText(std::string_view text, bool deleteSpace);

}  // namespace pavex
