// client/app/progress_line.h: how far a command is, on one line of the terminal that is written over.
#pragma once

#include <string>

namespace pavex {

// On standard error, where that is a terminal which can go back on a line.  Gone when this ends.
class ProgressLine {
public:
    explicit ProgressLine(bool isWanted);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    bool IsShown() const { return isShown_; }
    // In place of the last text.  UTF-8; of one that is wider than the screen the end is shown, which has the numbers.
    void Show(const std::string& text);

private:
    const bool isShown_;
    std::string drawn_;
};

}  // namespace pavex
