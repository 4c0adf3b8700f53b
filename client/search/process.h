// client/search/process.h: runs the search engine's programs.
#pragma once

#include <string>
#include <vector>

namespace pavex {

struct ProcessResult {
    int error = 0;       // why it could not be started (errno); 0: it was
    int exit = -1;       // exit status; 128 + the signal that ended it
    std::string output;  // standard output and standard error
};

// Runs a program found in PATH and waits for its end.  No shell sees the words.  The program speaks English, takes
// and gives UTF-8, lives in GMT, and is told nothing of the user's own search settings.
ProcessResult RunProcess(const std::vector<std::string>& command);

}  // namespace pavex
