// client/import/message_note.h: a message as a note.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <gmime/gmime.h>

#include "client/import/importer.h"
#include "client/import/message_bytes.h"
#include "client/store/note.h"

namespace pavex {

// What the mailbox knows of a message beside its bytes.
struct MessageCircumstances {
    ImportOptions::As as = ImportOptions::As::kMail;
    PostingLevel level = PostingLevel::kTopic;  // of a posting of a discussion
    std::optional<int64_t> deliveryDate;        // seconds since 1970, of the separator line
    int64_t fileDate = 0;                       // of the file it lies in
    bool draft = false;                         // not sent: the note gets no PostedDate
};

// Fills the note's items, and its times where the message gives them, from a stream of the message that
// can be read in any order.  Only the text is read into memory.  False with *reason when it cannot be parsed.
bool ParseMessageNote(GMimeStream* stream, const MessageCircumstances& circumstances, Note* note, std::string* reason);

// The same from where the message lies.
bool MakeMessageNote(const MessagePlace& place, ImportOptions::As as, Note* note, std::string* reason);

}  // namespace pavex
