// client/search/process.h: runs the search engine's programs.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace pavex {

struct ProcessResult {
    int error = 0;       // why it could not be started (errno); 0: it was
    int exit = -1;       // exit status; 128 + the signal that ended it
    std::string output;  // standard output and standard error, no more than kMostOutput bytes
};
constexpr size_t kMostOutput = 4096;      // bytes that are kept: enough to say what went wrong
constexpr size_t kLongestLine = 1 << 20;  // bytes; what a line has beyond is dropped

// Called with each line of output, without its line end, as it comes.
using LineCallback = std::function<void(const std::string& line)>;

// Runs a program found in PATH and waits for its end.  No shell sees the words.  The program speaks English, takes
// and gives UTF-8, lives in GMT, is told nothing of the user's own search settings, and meets signals as a shell's
// programs do.
//   held  a descriptor, borrowed, that the program holds open, too, until it ends: a lock on it stays although this
//         process ends before; -1: none.
ProcessResult RunProcess(const std::vector<std::string>& command, const LineCallback& onLine = nullptr, int held = -1);

}  // namespace pavex
