// client/import/vcard_stream.h: the cards of a file, one after the other.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "client/import/content_lines.h"
#include "client/import/owners.h"
#include "client/import/vcard_line.h"

namespace pavex {

// Most text of a card, in bytes, with what its lines cost in memory.  Pictures, sounds and keys are passed over.
constexpr size_t kLargestCard = size_t{4} * 1024 * 1024;

// A card, or what stands in the place of one.
struct CardFound {
    std::vector<CardProperty> properties;
    std::string problem;  // why it is no card; empty: it is one
    std::string notice;   // what of it was left out; empty: nothing
    uint64_t line = 0;    // of its beginning, counted from 1 where the reading began
    uint64_t start = 0;   // offset of its first byte
    uint64_t end = 0;     // of what follows it
    std::string digest;   // SHA-256 in hex of the lines that were kept, unfolded
};

// Splits a file into cards, in bounded memory.  A card within a card (as its AGENT) is the value of that property,
// its lines between line feeds.  What does not end before the next card begins, and what is between cards,
// is handed out with its problem; the cards after it are read.
class CardStream {
public:
    // As for LineReader.
    CardStream(int descriptor, uint64_t start, uint64_t end) : lines_(descriptor, start, end) {}

    // False at the end, and when reading failed (Error() is then not 0).
    bool Next(CardFound* found);
    int Error() const { return lines_.Error(); }

private:
    bool Take(const ContentLine& line, CardFound* found);
    bool TakeOutside(const ContentLine& line, bool begins, CardFound* found);
    void TakeProperty(const ContentLine& line);
    void TakeRest(const ContentLine& line);
    void AppendLine(std::string_view line);
    void Hash(std::string_view line);
    bool Room(size_t bytes);
    void Open(const ContentLine& line);
    bool HandOut(std::string problem, CardFound* found);

    ContentLines lines_;
    CardFound card_;
    ChecksumOwner checksum_;
    bool open_ = false;
    bool leftOut_ = false;       // the last property is passed over, with what belongs to it
    bool awaitsNested_ = false;  // the last line was a property whose value is the card that follows
    uint64_t nested_ = 0;        // depth of cards within the card
    bool garbage_ = false;       // what stands here between cards was reported
    size_t kept_ = 0;            // bytes
};

// The properties of a card that is the value of a property: its lines between line feeds.
std::vector<CardProperty> ReadNestedCard(std::string_view text);
// True when the text is a card and not a name or an address.
bool IsNestedCard(std::string_view text);

}  // namespace pavex
