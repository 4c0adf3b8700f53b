// client/import/vcard_reader.cpp: the cards of a file as entries.
#include "client/import/vcard_reader.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include "client/import/text_file.h"
#include "client/import/vcard_note.h"
#include "client/import/vcard_stream.h"

namespace pavex {
namespace {

std::string Where(const std::string& path, uint64_t line)
{
    return path + ":line " + std::to_string(line);
}

std::string ReadFailure(int error)
{
    return std::string("cannot be read: ") + std::strerror(error);
}

SourceEntryFound EntryOf(const std::string& path, const std::shared_ptr<const CardFound>& card)
{
    SourceEntryFound entry;
    entry.kind = EntryKind::kPerson;
    entry.identity = IdentityOfCard(card->properties);
    entry.digest = card->digest;
    entry.where = Where(path, card->line);
    entry.revision = RevisionOfCard(card->properties);
    entry.notice = card->notice;
    entry.make = [card](Note* note, std::string*) {
        MakeContactNote(card->properties, note);
        return true;
    };
    return entry;
}

bool HandOut(const std::string& path, CardFound found, EntryHandler& handler)
{
    if (!found.problem.empty()) {
        handler.Unreadable(Where(path, found.line), found.problem);
        return true;
    }
    if (NameOfCard(found.properties).empty()) {
        constexpr const char* kNameless = "is a card without a name, a company or an e-mail address";
        return handler.RejectedVersion(EntryKind::kPerson, IdentityOfCard(found.properties), Where(path, found.line),
                                       kNameless);
    }
    return handler.Found(EntryOf(path, std::make_shared<const CardFound>(std::move(found))));
}

}  // namespace

bool LooksLikeVcard(const SourceFile& file)
{
    constexpr std::string_view kBegin = "BEGIN:VCARD";
    const std::string head = TextOfHead(file.head);
    std::string_view text = TrimmedText(head);
    if (file.place == SourceFile::Place::kMaildir)
        return false;
    const bool named = EndsWithWord(file.path, ".vcf") || EndsWithWord(file.path, ".vcard");
    for (bool first = true; !text.empty() && (first || named); first = false) {
        const size_t end = std::min(text.find_first_of("\r\n"), text.size());
        if (SameWord(TrimmedText(text.substr(0, end)), kBegin))
            return true;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return false;
}

bool ReadVcards(const SourceFile& file, const ImportOptions& /*options*/, EntryHandler& handler)
{
    TextFile text;
    std::string reason;
    if (!OpenTextFile(file.path, &text, &reason)) {
        handler.Unreadable(file.path, reason);
        return true;
    }
    CardStream cards(text.descriptor.Get(), text.start, text.end);
    CardFound found;
    uint64_t reported = 0;
    while (cards.Next(&found)) {
        constexpr uint64_t kProgressBytes = uint64_t{1} * 1024 * 1024;
        const uint64_t end = std::min(found.end, file.size);  // of a copy as UTF-8 about as far as in the file
        if (!HandOut(file.path, std::move(found), handler))
            return false;
        if (end < reported + kProgressBytes)
            continue;
        if (!handler.Progress(end - reported))
            return false;
        reported = end;
    }
    if (cards.Error() != 0)
        handler.Unreadable(file.path, ReadFailure(cards.Error()));
    return handler.Progress(file.size - reported);
}

}  // namespace pavex
