// client/search/signs.h: what the search engine makes of single characters.
// Its settings, the queries and the places of hits all go by the same tables.
#pragma once

#include <span>
#include <string>

namespace pavex {

// A character that stands for others, beyond what Unicode takes apart.
struct LetterForm {
    char32_t letter;
    const char* plain;
};
std::span<const LetterForm> LetterForms();

// Of those written without blanks between words: the engine takes each two that stand together for a term.
bool IsPaired(char32_t c);

// Whether the engine may take digits behind it for a part of its run, so that no number is found there: it is neither
// ASCII nor of the alphabets that most mail is written in.  In the index and in queries digits are parted from these.
bool SwallowsDigits(char32_t c);
// Those of the alphabets, in UTF-8, none of them a sign of XML.
std::string Alphabets();

// Control characters and white space, which separate words.  Characters that only shape others, such as joiners, soft
// hyphens and marks of direction, separate none, and the engine has none of them in its terms (see IsShaping).
bool IsSeparator(char32_t c);
bool IsShaping(char32_t c);

}  // namespace pavex
