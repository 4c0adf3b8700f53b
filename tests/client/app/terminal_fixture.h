// tests/client/app/terminal_fixture.h: a program run on a terminal of a given size.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace pavex {

struct Terminal {
    unsigned short columns = 80;
    // Set for the program beside what the test has.  TERM is "xterm" and neither NO_COLOR nor PAGER is set unless here.
    std::vector<std::pair<std::string, std::string>> environment = {};
};

// What the program wrote to its terminal, line ends as "\n"; the test fails when it did not end with status 0.
std::string RunOnTerminal(const Terminal& terminal, const std::vector<std::string>& command);

// The columns that a line takes on the screen, as the system's own table has it; the sequences for bold and plain count
// nothing.  The test fails for what is no UTF-8 or would not be printed.
int ScreenColumns(const std::string& line);

std::vector<std::string> LinesOf(const std::string& text);

}  // namespace pavex
