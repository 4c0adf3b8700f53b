// client/import/line_reader.h: the lines of a file of any size, read through one buffer.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pavex {

// A line, or a piece of one that is longer than the buffer.
struct Line {
    std::string_view text;   // without its end; valid until the next line is read
    uint64_t offset = 0;     // of the text, from the start of the file
    uint64_t endOffset = 0;  // of what follows the line's end
    bool starts = true;      // the text begins the line
    bool ends = true;        // the text ends it: the last line of a file ends without a line break too
    bool hasBreak = true;    // a line break follows
};

// Lines end at LF or CRLF; at CR alone in a file whose first 64 KB hold no LF.
class LineReader {
public:
    // descriptor: borrowed; its position is neither used nor moved.  end: where to stop, as an offset.
    LineReader(int descriptor, uint64_t start, uint64_t end);

    // False at the end, and when reading failed (Error() is then not 0).
    bool Next(Line* line);
    int Error() const { return error_; }  // errno of the read that failed
    bool EndsAtCr() const { return lineBreak_ == '\r'; }

private:
    bool Fill();

    int descriptor_;
    uint64_t end_;
    uint64_t bufferOffset_;  // of buffer_[0] in the file
    std::string buffer_;
    size_t at_ = 0;    // first byte not handed out
    size_t held_ = 0;  // bytes in the buffer
    char lineBreak_ = '\n';
    bool atEnd_ = false;
    bool inLine_ = false;  // a piece of the line was handed out
    int error_ = 0;
};

}  // namespace pavex
