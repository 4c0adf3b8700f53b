// client/windows/input_line_reader.cpp: lines from a file descriptor, with a limit on the waiting.
#include "client/windows/input_line_reader.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <poll.h>
#include <unistd.h>

#include "client/windows/dialog.h"

namespace pavex {

bool InputLineReader::TakeLine(std::string* line)
{
    const size_t end = pending_.find('\n');
    if (end == std::string::npos && (!ended_ || pending_.empty()))
        return false;
    *line = pending_.substr(0, end);
    pending_.erase(0, end == std::string::npos ? pending_.size() : end + 1);
    if (!line->empty() && line->back() == '\r')
        line->pop_back();
    return true;
}

InputLineReader::Outcome InputLineReader::Read(std::optional<uint64_t> timeoutMs, std::string* line)
{
    const uint64_t start = SteadyMilliseconds();
    if (descriptor_ < 0)
        ended_ = true;
    while (!TakeLine(line)) {
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
    return Outcome::Line;
}

}  // namespace pavex
