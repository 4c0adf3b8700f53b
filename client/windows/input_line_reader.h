// client/windows/input_line_reader.h: lines from a file descriptor, with a limit on the waiting.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace pavex {

class InputLineReader {
public:
    enum class Outcome { Line, TooLong, TimedOut, Ended };

    // descriptor: borrowed; -1: ended from the start.
    explicit InputLineReader(int descriptor) : descriptor_(descriptor) {}
    // Waits for a whole line, without its line end, at most timeoutMs (none: as long as it takes).  The
    // last line needs no line end.  A read error counts as the end.  A line of more than kMostLineBytes is
    // TooLong: none of it is kept, and what follows up to its end is passed over.
    static constexpr size_t kMostLineBytes = 65536;
    Outcome Read(std::optional<uint64_t> timeoutMs, std::string* line);

private:
    std::optional<Outcome> TakeLine(std::string* line);
    // Drops what has come of a line that is too long, up to its end.
    void PassOver();

    int descriptor_;
    bool ended_ = false;
    bool passingOver_ = false;  // the rest of a line that was too long
    std::string pending_;
};

}  // namespace pavex
