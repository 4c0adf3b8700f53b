// client/import/mbox_reader.cpp: splits an mbox file into messages.
// A "From " line starts one only after an empty line and with a date, because many writers do not quote it
// in bodies.  What cannot be settled stays in the message before it: nothing is dropped.
#include "client/import/mbox_reader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>

#include "client/import/line_reader.h"
#include "client/import/mail_date.h"
#include "client/import/message_reader.h"
#include "client/store/descriptor.h"

namespace pavex {
namespace {

class MboxWalk {
public:
    MboxWalk(const SourceFile& file, const ImportOptions& options, EntryHandler& handler, int descriptor)
        : file_(file), options_(options), handler_(handler), descriptor_(descriptor),
          lines_(descriptor, StartOffset(file), file.size)
    {
    }

    bool Run()
    {
        Line line;
        bool first = true;
        while (lines_.Next(&line)) {
            const bool separator = line.starts && line.ends && line.text.starts_with("From ") &&
                                   (first || (afterBlank_ && line.offset >= trustedUntil_));
            const std::optional<int64_t> date = separator ? ReadFromLine(line.text) : std::nullopt;
            if (separator && (first || date || LooksUndated(line.text))) {
                if (!HandOut(line.offset))
                    return false;
                Begin(line.endOffset, date);
            } else {
                Add(line);
            }
            afterBlank_ = line.starts && line.ends && line.text.empty();
            first = first && line.text.empty();
        }
        if (lines_.Error() != 0) {
            handler_.Unreadable(file_.path, std::string("cannot be read: ") + std::strerror(lines_.Error()));
            return true;
        }
        return HandOut(file_.size);
    }

private:
    static uint64_t StartOffset(const SourceFile& file) { return file.head.starts_with("\xEF\xBB\xBF") ? 3 : 0; }

    // "From - " and the like, whose date is impossible but whose form is that of a separator all the same.
    static bool LooksUndated(std::string_view line)
    {
        const size_t clock = line.find(':');
        return clock != line.npos && clock > 5 && line.size() < 200 && line.substr(5, 2) == "- ";
    }

    void Begin(uint64_t offset, std::optional<int64_t> date)
    {
        place_ = MessagePlace{};
        place_.path = file_.path;
        place_.start = offset;
        place_.deliveryDate = date;
        place_.fileDate = file_.modified;
        place_.inMailbox = true;
        scan_.emplace();
        begun_ = false;
        trustedUntil_ = 0;
    }

    void Add(const Line& line)
    {
        if (!scan_)
            return;  // empty lines before the first separator
        if (!begun_ && line.text.empty()) {
            place_.start = line.endOffset;
            return;
        }
        begun_ = true;
        const bool inHeader = !scan_->Facts().headerEnded;
        scan_->Add(line);
        if (inHeader && scan_->Facts().headerEnded)
            TrustLength(line.endOffset);
    }

    // Bodies of known length need no quoting, so no line in them is a separator.
    void TrustLength(uint64_t bodyOffset)
    {
        const std::optional<uint64_t> length = scan_->Facts().contentLength;
        if (!length || *length > file_.size - bodyOffset)
            return;
        const uint64_t end = bodyOffset + *length;
        if (end == file_.size || StartsSeparator(end))
            trustedUntil_ = end;
    }

    bool StartsSeparator(uint64_t offset) const
    {
        std::array<char, 256> bytes{};
        const ssize_t count = ::pread(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        std::string_view text(bytes.data(), count > 0 ? static_cast<size_t>(count) : 0);
        text.remove_prefix(std::min(text.find_first_not_of("\r\n"), text.size()));
        return ReadFromLine(text.substr(0, text.find_first_of("\r\n"))).has_value();
    }

    bool HandOut(uint64_t end)
    {
        if (!scan_)
            return handler_.Progress(0);
        place_.end = std::max(end, place_.start);
        place_.facts = scan_->Finish();
        scan_.reset();
        const uint64_t bytes = place_.end - reported_;
        reported_ = place_.end;
        return HandOutMessage(std::move(place_), options_, handler_) && handler_.Progress(bytes);
    }

    const SourceFile& file_;
    const ImportOptions& options_;
    EntryHandler& handler_;
    int descriptor_;
    LineReader lines_;
    MessagePlace place_;
    std::optional<MessageScan> scan_;  // of the message being read; none before the first separator
    bool begun_ = false;               // a line of it was seen
    bool afterBlank_ = false;
    uint64_t trustedUntil_ = 0;  // offset before which no line is a separator
    uint64_t reported_ = 0;
};

}  // namespace

bool LooksLikeMbox(const SourceFile& file)
{
    if (file.place == SourceFile::Place::kMaildir)
        return false;
    std::string_view head = file.head;
    if (head.starts_with("\xEF\xBB\xBF"))
        head.remove_prefix(3);
    head.remove_prefix(std::min(head.find_first_not_of("\r\n"), head.size()));
    if (head.empty() && file.size <= file.head.size())
        return file.path.find('.', file.path.rfind('/') + 1) == file.path.npos || file.path.ends_with(".mbox");
    if (!head.starts_with("From "))
        return false;
    const std::string_view line = head.substr(0, head.find_first_of("\r\n"));
    if (ReadFromLine(line))
        return true;
    head.remove_prefix(std::min(head.find_first_not_of("\r\n", line.size()), head.size()));
    return IsHeaderLine(head.substr(0, head.find_first_of("\r\n"))) || head.starts_with(">From ");
}

bool ReadMbox(const SourceFile& file, const ImportOptions& options, EntryHandler& handler)
{
    const Descriptor descriptor(::open(file.path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!descriptor.IsOpen()) {
        handler.Unreadable(file.path, std::string("cannot be opened: ") + std::strerror(errno));
        return true;
    }
    return MboxWalk(file, options, handler, descriptor.Get()).Run();
}

}  // namespace pavex
