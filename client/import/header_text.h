// client/import/header_text.h: the text of a header field: unfolding and encoded words, in the proper
// form and in the broken ones that mail programs have written over the years.
#pragma once

#include <string>
#include <string_view>

namespace pavex {

// Joins the lines of a field: each line break with the white space around it becomes one space; white
// space at both ends is cut.
std::string UnfoldHeader(std::string_view raw);

// Length of the encoded word ("=?charset?Q?text?=") at the front of the text; 0 when there is none.
// Spaces inside the text part are taken, as many programs write them.
size_t EncodedWordLength(std::string_view text);

// Text of an unfolded field as clean UTF-8 on one line.  Encoded words are decoded wherever they stand,
// inside quotes too; the bytes of adjacent words of one charset are joined first, since some programs cut
// characters in two.  A word of an unknown charset or encoding is decoded as well as can be, or left as it is.
//   guess  charset of bytes above 127 that are not UTF-8, usually the body's; may be empty.
std::string DecodeHeaderText(std::string_view unfolded, std::string_view guess);

}  // namespace pavex
