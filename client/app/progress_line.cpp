// client/app/progress_line.cpp: how far a command is, on one line of the terminal that is written over.
#include "client/app/progress_line.h"

#include <unistd.h>

#include <iostream>

#include "client/app/terminal_text.h"

namespace pavex {

namespace {

constexpr const char* kErase = "\r\033[K";

}  // namespace

ProgressLine::ProgressLine(bool isWanted) : isShown_(isWanted && isatty(STDERR_FILENO) != 0 && !IsDumbTerminal()) {}

ProgressLine::~ProgressLine()
{
    if (!drawn_.empty())
        std::cerr << kErase << std::flush;
}

void ProgressLine::Show(const std::string& text)
{
    if (!isShown_)
        return;
    // The last column stays free: in it some terminals go on to the next line, where nothing is written over.
    const std::string line = EndOfLine(PrintableLine(text), TerminalColumns(STDERR_FILENO) - 1);
    if (line == drawn_)
        return;
    std::cerr << kErase << line << std::flush;
    drawn_ = line;
}

}  // namespace pavex
