// client/import/message_bytes.cpp: streams of messages that never hold one in memory.
#include "client/import/message_bytes.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>

#include "client/import/line_reader.h"
#include "client/import/temporary_file.h"
#include "client/store/descriptor.h"

namespace pavex {
namespace {

std::string_view Unquoted(std::string_view text)
{
    const size_t depth = std::min(text.find_first_not_of('>'), text.size());
    return depth > 0 && text.substr(depth).starts_with("From ") ? text.substr(1) : text;
}

// Where parsing stops.
uint64_t ParsedEnd(const MessagePlace& place)
{
    return place.facts.parsedEnd != 0 ? place.facts.parsedEnd : place.end;
}

// Copies the message line by line with the line ends and "From " lines it was sent with.
bool CopyAsSent(const MessagePlace& place, int from, int to, std::string* reason)
{
    LineReader lines(from, place.start, ParsedEnd(place));
    Line line;
    std::string piece;
    constexpr size_t kPieceBytes = size_t{64} * 1024;
    bool inHeader = true;
    bool written = true;
    while (written && lines.Next(&line)) {
        inHeader = inHeader && !(line.starts && line.text.empty());
        const size_t before = piece.size();
        piece += place.inMailbox && line.starts ? Unquoted(line.text) : line.text;
        if (inHeader)
            std::replace(piece.begin() + static_cast<std::ptrdiff_t>(before), piece.end(), '\0', ' ');
        if (line.ends && line.hasBreak)
            piece += '\n';
        if (piece.size() >= kPieceBytes) {
            written = WriteAll(to, piece);
            piece.clear();
        }
    }
    written = written && WriteAll(to, piece);
    if (!written)
        *reason = std::string("cannot write a temporary copy: ") + std::strerror(errno);
    else if (lines.Error() != 0)
        *reason = std::string("cannot be read: ") + std::strerror(lines.Error());
    return written && lines.Error() == 0;
}

bool LiesAsSent(const MessagePlace& place, int descriptor)
{
    if (place.facts.nulInHeader || (place.inMailbox && place.facts.quotedFrom))
        return false;
    return !LineReader(descriptor, place.start, std::min(place.end, place.start + 65536)).EndsAtCr();
}

ObjectOwner<GMimeStream> StreamOf(Descriptor file, int64_t start, int64_t end)
{
    GMimeStream* const stream = g_mime_stream_fs_new_with_bounds(file.Release(), start, end);
    g_mime_stream_fs_set_owner(GMIME_STREAM_FS(stream), TRUE);
    return ObjectOwner<GMimeStream>(stream);
}

}  // namespace

std::string MessagePlace::Where() const
{
    return inMailbox ? path + ":byte " + std::to_string(start) : path;
}

ObjectOwner<GMimeStream> OpenMessage(const MessagePlace& place, std::string* reason)
{
    Descriptor file(::open(place.path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!file.IsOpen()) {
        *reason = std::string("cannot be opened: ") + std::strerror(errno);
        return nullptr;
    }
    if (LiesAsSent(place, file.Get()))
        return StreamOf(std::move(file), static_cast<int64_t>(place.start), static_cast<int64_t>(ParsedEnd(place)));
    Descriptor copy = OpenTemporaryFile();
    if (!copy.IsOpen()) {
        *reason = std::string("cannot make a temporary copy: ") + std::strerror(errno);
        return nullptr;
    }
    if (!CopyAsSent(place, file.Get(), copy.Get(), reason))
        return nullptr;
    return StreamOf(std::move(copy), 0, -1);
}

void StartMimeLibrary()
{
    static const bool started = [] {
        g_mime_init();
        return true;
    }();
    (void)started;
}

}  // namespace pavex
