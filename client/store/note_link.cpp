// client/store/note_link.cpp: the address of a note, and the history's entries, which lead to one.
#include "client/store/note_link.h"

#include <strings.h>

#include "client/store/richtext.h"
#include "client/store/timedate.h"

namespace pavex {

namespace {

constexpr size_t kReplicaDigits = 16;
constexpr size_t kNoteDigits = 32;

bool CanBeFollowed(const TIMEDATE& replica, const UNID& note)
{
    return replica.Innards[0] != 0 && replica.Innards[1] != 0 && note.File.Innards[0] != 0 &&
           note.File.Innards[1] != 0 && note.Note.Innards[0] != 0;
}

}  // namespace

std::string UrlOfNote(const TIMEDATE& replica, const UNID& note)
{
    return std::string(kNoteScheme) + HexFromId(replica) + "//" + HexFromUnid(note);
}

std::optional<NOTELINK> LinkFromUrl(std::string_view url)
{
    if (url.size() < kNoteScheme.size() || strncasecmp(url.data(), kNoteScheme.data(), kNoteScheme.size()) != 0)
        return std::nullopt;
    url.remove_prefix(kNoteScheme.size());
    while (url.ends_with(' ') || url.ends_with('/'))
        url.remove_suffix(1);
    if (url.size() != kReplicaDigits + 2 + kNoteDigits || url.substr(kReplicaDigits, 2) != "//")
        return std::nullopt;
    const std::optional<TIMEDATE> replica = IdFromHex(url.substr(0, kReplicaDigits));
    const std::optional<UNID> note = UnidFromHex(url.substr(kReplicaDigits + 2));
    if (!replica || !note || !CanBeFollowed(*replica, *note))
        return std::nullopt;
    NOTELINK link{};
    link.replica = *replica;
    link.note = *note;
    return link;
}

Note HistoryNote(const NOTELINK& link, std::string_view titleUtf8)
{
    RichTextBuilder url;
    url.AddLink(link, titleUtf8);
    Note note;
    note.items = {TextItem("Form", kHistoryForm), TextItem("Title", titleUtf8), RichTextItem("URL", url.Records())};
    return note;
}

std::optional<NOTELINK> LinkOfHistoryNote(const Note& note)
{
    const Item* const url = note.Find("URL");
    if (url == nullptr || url->type != kTypeRichText)
        return std::nullopt;
    for (const RichTextPiece& piece : ReadRichText(url->value))
        if (piece.kind == RichTextPiece::Kind::kLink)
            return piece.link;
    return std::nullopt;
}

}  // namespace pavex
