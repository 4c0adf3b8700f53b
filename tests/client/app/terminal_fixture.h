// tests/client/app/terminal_fixture.h: a program run on a terminal of a given size.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pavex {

struct Terminal {
    unsigned short columns = 80;
    // Set for the program beside what the test has.  TERM is "xterm" and none of NO_COLOR, PAGER and LESS is set unless
    // here.
    std::vector<std::pair<std::string, std::string>> environment = {};
};

// A program at work on a terminal of 24 lines.  Killed when it is given up unwaited for.
class TerminalSession {
public:
    TerminalSession(const Terminal& terminal, const std::vector<std::string>& command);
    ~TerminalSession();
    TerminalSession(const TerminalSession&) = delete;
    TerminalSession& operator=(const TerminalSession&) = delete;

    // Waits until the text was written; false when the program ended before, or nothing came for so long (a minute).
    bool Shows(const std::string& text, int mostMs = 60000);
    void Type(std::string_view keys) const;
    // Reads on to the program's end; its exit status, 128 + the number of the signal that ended it.  The test fails
    // when nothing comes for a minute.
    int Wait();
    // What was read so far, line ends as "\n".
    std::string Output() const;

private:
    enum class Piece { kRead, kNone, kEnd };
    // kNone: nothing came for so long.
    Piece ReadOn(int mostMs);

    int screen_ = -1;
    pid_t process_ = 0;
    std::string output_;
};

// What the program wrote to its terminal, line ends as "\n"; the test fails when it did not end with status 0.
std::string RunOnTerminal(const Terminal& terminal, const std::vector<std::string>& command);

// The columns that a line takes on the screen, as the system's own table has it; the sequences for bold and plain count
// nothing.  The test fails for what is no UTF-8 or would not be printed.
int ScreenColumns(const std::string& line);

std::vector<std::string> LinesOf(const std::string& text);

}  // namespace pavex
