// client/import/message_reader.cpp: one file, one message.
#include "client/import/message_reader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include <fcntl.h>

#include "client/import/mail_date.h"
#include "client/import/message_note.h"
#include "client/import/words.h"
#include "client/store/descriptor.h"

namespace pavex {
namespace {

// A header larger than this would have to be held in memory to be parsed, and says nothing.
constexpr uint64_t kLargestHeader = uint64_t{16} * 1024 * 1024;

// What may stand before the header: a byte order mark, empty lines, a separator line of an mbox.
bool IsBeforeHeader(const Line& line)
{
    return line.text.empty() || line.text == "\xEF\xBB\xBF" || line.text.starts_with("From ");
}

std::string WhyNoMessage(const MessagePlace& place)
{
    if (place.start == place.end)
        return "is empty";
    if (place.facts.headerFields == 0)
        return "is not a message: it has no header fields";
    if (place.facts.headerBytes > kLargestHeader)
        return "has a header of more than 16 MB";
    return {};
}

// "as" and what the mailbox says of drafts make different notes of equal bytes.
std::string NoteDigest(const MessagePlace& place, const ImportOptions& options)
{
    std::string digest = place.facts.digest;
    digest += options.as == ImportOptions::As::kMail ? "-mail"
                                                     : "-discussion-" + std::to_string(static_cast<int>(place.level));
    return place.draft ? digest + "-draft" : digest;
}

}  // namespace

bool LooksLikeMessage(const SourceFile& file)
{
    if (file.place == SourceFile::Place::kMaildir || EndsWithWord(file.path, ".eml"))
        return true;
    std::string_view head = file.head;
    if (head.starts_with("\xEF\xBB\xBF"))
        head.remove_prefix(3);
    head.remove_prefix(std::min(head.find_first_not_of(" \t\r\n"), head.size()));
    MessageScan scan;
    bool wellFormed = true;  // nothing but fields, up to the empty line after them
    bool first = true;
    for (Line line; !head.empty() && !scan.Facts().headerEnded; first = false) {
        line.text = head.substr(0, head.find_first_of("\r\n"));
        head.remove_prefix(line.text.size());
        head.remove_prefix(std::min<size_t>(head.starts_with("\r\n") ? 2 : 1, head.size()));
        const bool field = IsHeaderLine(line.text);
        const bool separator = line.text.starts_with("From ") || line.text.starts_with(">From ");
        if (first && !field && !separator)
            return false;
        wellFormed =
            wellFormed && (field || separator || line.text.empty() || line.text[0] == ' ' || line.text[0] == '\t');
        scan.Add(line);
    }
    const bool ended = scan.Facts().headerEnded || file.size <= file.head.size();
    // A script's comment or a table of settings easily begins like one field of a message.
    return scan.Finish().mailFields >= (wellFormed && ended ? 1U : 2U);
}

bool HandOutMessage(MessagePlace place, const ImportOptions& options, EntryHandler& handler)
{
    place.draft = place.draft || place.facts.draft;
    if (place.facts.mailboxRecord)
        return true;  // no message: the mailbox wrote it for itself
    if (place.facts.deleted)
        return handler.Rejected(place.Where(), "is marked as deleted in its mailbox");
    if (const std::string reason = WhyNoMessage(place); !reason.empty())
        return handler.Rejected(place.Where(), reason);
    SourceEntryFound entry;
    if (options.as == ImportOptions::As::kDiscussion) {
        entry.kind = EntryKind::kDiscussion;
        place.level = handler.Threads().Add(place.facts.messageId, place.facts.parentId, place.facts.references);
    }
    entry.digest = NoteDigest(place, options);
    entry.identity =
        "message:" + (place.facts.messageId.empty() ? "sha256:" + place.facts.digest : place.facts.messageId);
    entry.where = place.Where();
    entry.unread = place.unread ? place.unread : place.facts.unread;
    auto kept = std::make_shared<const MessagePlace>(std::move(place));
    entry.make = [kept, as = options.as](Note* note, std::string* reason) {
        return MakeMessageNote(*kept, as, note, reason);
    };
    return handler.Found(std::move(entry));
}

bool ReadMessage(const SourceFile& file, const ImportOptions& options, EntryHandler& handler)
{
    MessagePlace place;
    place.path = file.path;
    place.end = file.size;
    place.fileDate = file.modified;
    place.unread = file.unread;
    place.draft = file.draft;
    const Descriptor descriptor(::open(file.path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!descriptor.IsOpen()) {
        handler.Unreadable(file.path, std::string("cannot be opened: ") + std::strerror(errno));
        return true;
    }
    LineReader lines(descriptor.Get(), file.head.starts_with("\xEF\xBB\xBF") ? 3 : 0, file.size);
    MessageScan scan;
    Line line;
    bool begun = false;
    uint64_t reported = 0;
    place.start = place.end;
    while (lines.Next(&line)) {
        if (!begun && IsBeforeHeader(line)) {
            if (const std::optional<int64_t> date = ReadFromLine(line.text))
                place.deliveryDate = date;
            continue;
        }
        if (!begun) {
            // Blanks before the first field, as a careless copy leaves them, are no continuation of anything.
            const size_t blanks = std::min(line.text.find_first_not_of(" \t"), line.text.size());
            line.text.remove_prefix(blanks);
            place.start = line.offset + blanks;
        }
        begun = true;
        scan.Add(line);
        constexpr uint64_t kProgressBytes = uint64_t{8} * 1024 * 1024;
        if (line.endOffset - reported >= kProgressBytes) {
            if (!handler.Progress(line.endOffset - reported))
                return false;
            reported = line.endOffset;
        }
    }
    if (lines.Error() != 0) {
        handler.Unreadable(file.path, std::string("cannot be read: ") + std::strerror(lines.Error()));
        return true;
    }
    place.facts = scan.Finish();
    place.facts.deleted = place.facts.deleted || file.deleted;
    return HandOutMessage(std::move(place), options, handler) && handler.Progress(file.size - reported);
}

}  // namespace pavex
