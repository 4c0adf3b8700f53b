// client/import/content_lines.h: the logical lines of calendar and contact files ("NAME;PARAMETER=x:value").
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "client/import/line_reader.h"

namespace pavex {

// A logical line: folded lines joined, those of quoted-printable values too.
struct ContentLine {
    std::string text;        // bytes as they stand, any charset
    uint64_t offset = 0;     // of its first byte in the file
    uint64_t endOffset = 0;  // of what follows it
    uint64_t number = 0;     // of its first physical line, counted from 1 where the reading began
    bool shortened = false;  // longer than kLongestContentLine: the rest was passed over
};
constexpr size_t kLongestContentLine = size_t{1024} * 1024;

// Whether a line that grows is quoted-printable, without reading its beginning anew each time.
class HeadScan {
public:
    // line: the same as before, or longer; it may have lost an equals sign at its end.
    bool IsQuotedPrintable(std::string_view line);

private:
    size_t seen_ = 0;
    bool quoted_ = false;
    size_t firstColon_ = std::string_view::npos;  // also within quotes, for those that are never closed
    size_t colon_ = std::string_view::npos;       // outside quotes
    size_t answered_ = std::string_view::npos;    // the colon that the answer is for
    bool answer_ = false;
};

class ContentLines {
public:
    // As for LineReader; a byte order mark is the caller's to skip.
    ContentLines(int descriptor, uint64_t start, uint64_t end) : lines_(descriptor, start, end) {}

    // False at the end, and when reading failed (Error() is then not 0).
    bool Next(ContentLine* line);
    int Error() const { return lines_.Error(); }

private:
    bool Fetch();
    void Take(ContentLine* line, std::string_view text);
    bool EndsSoftly(std::string_view text);

    LineReader lines_;
    HeadScan head_;        // of the logical line
    bool equals_ = false;  // the physical line that was taken last ends with an equals sign
    Line next_;            // the physical line, or piece of one, not yet handed out
    bool have_ = false;    // next_ holds one
    bool ended_ = false;
    uint64_t number_ = 0;  // of next_
};

// Name of a logical line in upper case, without its group ("item1.TEL" is "TEL").
std::string ContentName(std::string_view line);
// Where the value begins: behind the first colon outside quotes; npos: none.
size_t ContentValue(std::string_view line);
// True when the parameters say that the value is quoted-printable.
bool IsQuotedPrintable(std::string_view line);
// The bytes that such a value stands for; an equals sign without two digits stands for itself.
std::string FromQuotedPrintable(std::string_view value);

}  // namespace pavex
