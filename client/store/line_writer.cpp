// client/store/line_writer.cpp: writes text into a file line by line, in bounded memory.
#include "client/store/line_writer.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>

#include "client/store/charset.h"
#include "client/store/charset_codec.h"
#include "client/store/status.h"

namespace pavex {

namespace {

constexpr size_t kBufferBytes = size_t{64} * 1024;
constexpr size_t kChunkBytes = size_t{4} * 1024;
constexpr std::string_view kLineBreaks("\0\n\r", 3);

}  // namespace

TextFile::TextFile(const std::string& path)
    : descriptor_(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600))
{
    if (!descriptor_.IsOpen())
        status_ = StatusOfErrno(errno);
}

void TextFile::Write(std::string_view bytes)
{
    bytes_ += bytes.size();
    buffer_ += bytes;
    if (buffer_.size() >= kBufferBytes)
        Flush();
}

void TextFile::Flush()
{
    if (!Failed() && !WriteAll(descriptor_.Get(), buffer_))
        status_ = StatusOfErrno(errno);
    buffer_.clear();
}

STATUS TextFile::Close()
{
    Flush();
    if (const int error = descriptor_.Close(); error != 0 && !Failed())
        status_ = StatusOfErrno(error);
    return status_;
}

void LineWriter::Add(std::string_view piece)
{
    while (!piece.empty()) {
        const size_t lineBreak = std::min(piece.find_first_of(kLineBreaks), piece.size());
        AddRun(piece.substr(0, lineBreak));
        piece.remove_prefix(lineBreak);
        if (piece.empty())
            return;
        const char character = piece.front();
        piece.remove_prefix(1);
        if (character == '\n' && afterReturn_) {
            afterReturn_ = false;
            continue;
        }
        EndLine();
        afterReturn_ = character == '\r';
    }
}

void LineWriter::EndLine()
{
    file_->Write(pending_);
    file_->Write(form_.end);
    pending_.clear();
    afterReturn_ = false;
}

void LineWriter::AddRun(std::string_view run)
{
    if (!run.empty())
        afterReturn_ = false;
    for (size_t i = 0; i < run.size(); i += kChunkBytes)
        AddChunk(std::string(run.substr(i, kChunkBytes)));
}

void LineWriter::AddChunk(std::string chunk)
{
    if (form_.convertTabs)
        std::replace(chunk.begin(), chunk.end(), '\t', ' ');
    if (form_.mostBytes == 0) {
        file_->Write(chunk);
        return;
    }
    pending_ += chunk;
    WriteFullLines();
}

void LineWriter::WriteFullLines()
{
    std::string_view rest = pending_;
    while (rest.size() > form_.mostBytes) {
        const size_t blank = rest.rfind(' ', form_.mostBytes);
        const size_t lastOfWord = blank == std::string_view::npos ? blank : rest.find_last_not_of(' ', blank);
        size_t cut;
        if (lastOfWord != std::string_view::npos) {
            cut = lastOfWord + 1;
        } else {
            // Not even one character may fit; it is written all the same.
            cut = std::max(ScsPrefix(rest, form_.mostBytes), ScsCodec::Decode(rest).bytes);
            if (cut == rest.size())
                break;
        }
        file_->Write(rest.substr(0, cut));
        file_->Write(form_.end);
        rest.remove_prefix(lastOfWord != std::string_view::npos ? blank + 1 : cut);
    }
    pending_.erase(0, pending_.size() - rest.size());
}

}  // namespace pavex
