// client/store/richtext.h: rich text, a sequence of records.
// Each record is a WORD signature, a WORD length in bytes that counts the whole record and is even,
// and a payload, all little-endian; text is SCS.  Readers check every bound: a damaged record ends the
// text, never the process.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/store.h"

namespace pavex {

constexpr uint16_t kRecordParagraph = 0xFF81;  // starts a paragraph; no payload
constexpr uint16_t kRecordText = 0xFF85;       // DWORD style, DWORD font, WORD text bytes, the text, a pad byte if odd
constexpr uint16_t kRecordRule = 0xFF8A;       // a horizontal rule; no payload
constexpr uint16_t kRecordLink = 0xFFF6;  // -10: a LINKRECORD, its variable parts, the NOTELINK, then the label as SCS
                                          // to the record's end, NUL-padded to an even length

// Builds the records of a value (type word not included).  Text is UTF-8.  A paragraph of any length: it
// is split over as many text records as it takes.
class RichTextBuilder {
public:
    void AddParagraph(std::string_view utf8);
    // A paragraph for each line; the last may end with a line feed or not.
    void AddLines(std::string_view utf8);
    void AddRule();
    void AddLink(const NOTELINK& link, std::string_view labelUtf8);
    const std::string& Records() const { return records_; }

private:
    std::string records_;
};

struct RichTextPiece {
    enum class Kind { kParagraph, kRule, kLink } kind;
    std::string text;  // UTF-8: the paragraph, or the link's label
    NOTELINK link;     // of a link
};
// The pieces of a value's records, in order; what follows a damaged record is left out and *damaged
// (may be null) set.
std::vector<RichTextPiece> ReadRichText(std::string_view records, bool* damaged = nullptr);

// piece: part of a paragraph, SCS; last: the paragraph ends with it.  False: no more is wanted.
using PlainTextSink = std::function<bool(std::string_view piece, bool last)>;
// Streams the plain text of records, paragraph by paragraph (no line ends), in pieces of bounded size.
// Returns false when a damaged record ended the text.
bool VisitPlainText(std::string_view records, const PlainTextSink& sink);

}  // namespace pavex
