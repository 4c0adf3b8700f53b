// client/import/vcard_values.h: what a card says, by meaning: the names that programs have for the same thing
// become one, parameters and labels become kinds, values become text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "client/import/vcard_line.h"

namespace pavex {

// Kinds of a value, as bits.
enum CardKind : unsigned {
    kCardHome = 1U << 0,
    kCardWork = 1U << 1,
    kCardCell = 1U << 2,
    kCardFax = 1U << 3,
    kCardPager = 1U << 4,
    kCardNoVoice = 1U << 5,  // a modem, a text telephone; or somebody else's number
    kCardSpouse = 1U << 6,
    kCardChild = 1U << 7,
    kCardManager = 1U << 8,
    kCardAssistant = 1U << 9,
    kCardAnniversary = 1U << 10,
};

struct CardValue {
    std::string name;                // of the property; of several names for the same the standard one
    unsigned kinds = 0;              // CardKind bits
    int preference = 101;            // 1 to 100, the lower the better; 101: not said
    std::string label;               // words that say what kind it is, for people; empty: none
    std::vector<std::string> parts;  // at least one that is not empty; several of N, ADR, ORG and of lists
};

// The values in the order of the card, without empty ones, pictures and the like, and what is only for programs.
std::vector<CardValue> ReadCardValues(const std::vector<CardProperty>& properties);

// What people call the property: "E-mail"; of one that is not known its name: "X-SHOE-SIZE" is "Shoe size".
std::string LabelOfProperty(std::string_view name);

// The parts that are not empty, joined.
std::string JoinedParts(const std::vector<std::string>& parts, std::string_view separator);

}  // namespace pavex
