// client/windows/input_line_reader.cpp: lines from a file descriptor, with a limit on the waiting.
#include "client/windows/input_line_reader.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <poll.h>
#include <unistd.h>

#include "client/windows/dialog.h"

namespace pavex {

void InputLineReader::PassOver()
{
    const size_t end = pending_.find('\n');
    passingOver_ = end == std::string::npos;
    pending_.erase(0, passingOver_ ? pending_.size() : end + 1);
}

// A line or one that is too long; none while more must come, or at the end.
std::optional<InputLineReader::Outcome> InputLineReader::TakeLine(std::string* line)
{
    if (passingOver_)
        PassOver();
    const size_t end = std::min(pending_.find('\n'), pending_.size());
    if (end > kMostLineBytes) {
        PassOver();
        return Outcome::TooLong;
    }
    if (end == pending_.size() && (!ended_ || pending_.empty()))
        return std::nullopt;
    *line = pending_.substr(0, end);
    pending_.erase(0, end + 1);
    if (!line->empty() && line->back() == '\r')
        line->pop_back();
    return Outcome::Line;
}

InputLineReader::Outcome InputLineReader::Read(std::optional<uint64_t> timeoutMs, std::string* line)
{
    const uint64_t start = SteadyMilliseconds();
    if (descriptor_ < 0)
        ended_ = true;
    for (;;) {
        if (const std::optional<Outcome> taken = TakeLine(line))
            return *taken;
        if (ended_)
            return Outcome::Ended;
        int wait = -1;
        if (timeoutMs) {
            const uint64_t passed = SteadyMilliseconds() - start;
            wait = static_cast<int>(std::min<uint64_t>(*timeoutMs > passed ? *timeoutMs - passed : 0, INT_MAX));
        }
        pollfd waiting = {descriptor_, POLLIN, 0};
        const int ready = poll(&waiting, 1, wait);
        if (ready == 0)
            return Outcome::TimedOut;
        if (ready < 0) {
            ended_ = errno != EINTR;
            continue;
        }
        char bytes[4096];
        const ssize_t count = read(descriptor_, bytes, sizeof bytes);
        if (count > 0)
            pending_.append(bytes, static_cast<size_t>(count));
        else
            ended_ = count == 0 || errno != EINTR;
    }
}

}  // namespace pavex
