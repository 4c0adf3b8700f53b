// client/windows/input_line_reader.h: lines from a file descriptor, with a limit on the waiting.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace pavex {

class InputLineReader {
public:
    enum class Outcome { Line, TimedOut, Ended };

    // descriptor: borrowed; -1: ended from the start.
    explicit InputLineReader(int descriptor) : descriptor_(descriptor) {}
    // Waits for a whole line, without its line end, at most timeoutMs (none: as long as it takes).  The
    // last line needs no line end.  A read error counts as the end.
    Outcome Read(std::optional<uint64_t> timeoutMs, std::string* line);

private:
    bool TakeLine(std::string* line);

    int descriptor_;
    bool ended_ = false;
    std::string pending_;
};

}  // namespace pavex
