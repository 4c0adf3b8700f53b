// client/import/line_reader.cpp: one buffer, moved along the file.
#include "client/import/line_reader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <unistd.h>

namespace pavex {
namespace {

constexpr size_t kBufferBytes = size_t{256} * 1024;
constexpr size_t kProbedBytes = size_t{64} * 1024;

}  // namespace

LineReader::LineReader(int descriptor, uint64_t start, uint64_t end)
    : descriptor_(descriptor), end_(end), bufferOffset_(start)
{
    buffer_.resize(static_cast<size_t>(std::min<uint64_t>(kBufferBytes, end > start ? end - start + 1 : 1)));
    Fill();
    const std::string_view probe = std::string_view(buffer_).substr(0, std::min(held_, kProbedBytes));
    if (probe.find('\n') == probe.npos && probe.find('\r') != probe.npos)
        lineBreak_ = '\r';
}

// Moves what is left to the front and reads on; false when nothing could be added.
bool LineReader::Fill()
{
    std::memmove(buffer_.data(), buffer_.data() + at_, held_ - at_);
    bufferOffset_ += at_;
    held_ -= at_;
    at_ = 0;
    const size_t before = held_;
    while (!atEnd_ && held_ < buffer_.size()) {
        const uint64_t offset = bufferOffset_ + held_;
        const size_t wanted =
            static_cast<size_t>(std::min<uint64_t>(buffer_.size() - held_, end_ - std::min(end_, offset)));
        const ssize_t count =
            wanted == 0 ? 0 : ::pread(descriptor_, buffer_.data() + held_, wanted, static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            error_ = errno;
        atEnd_ = count <= 0;
        held_ += count > 0 ? static_cast<size_t>(count) : 0;
    }
    return held_ > before;
}

bool LineReader::Next(Line* line)
{
    size_t found = std::string_view(buffer_.data() + at_, held_ - at_).find(lineBreak_);
    if (found == std::string_view::npos && !atEnd_) {
        Fill();
        found = std::string_view(buffer_.data(), held_).find(lineBreak_);
    }
    if (at_ == held_ || error_ != 0)
        return false;
    const bool hasBreak = found != std::string_view::npos;
    size_t length = hasBreak ? found : held_ - at_;
    const bool wholeLine = hasBreak || atEnd_;
    size_t taken = length + (hasBreak ? 1 : 0);
    if (buffer_[at_ + (length > 0 ? length - 1 : 0)] == '\r' && length > 0 && lineBreak_ == '\n') {
        --length;
        // A CR at the end of a piece may belong to a CRLF: it waits for the rest.
        if (!wholeLine)
            --taken;
    }
    line->text = std::string_view(buffer_.data() + at_, length);
    line->offset = bufferOffset_ + at_;
    line->endOffset = line->offset + taken;
    line->starts = !inLine_;
    line->ends = wholeLine;
    line->hasBreak = hasBreak;
    inLine_ = !wholeLine;
    at_ += taken;
    return true;
}

}  // namespace pavex
