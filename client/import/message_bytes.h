// client/import/message_bytes.h: where the bytes of a message lie, and a stream of them as it was sent.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <gmime/gmime.h>

#include "client/import/message_scan.h"
#include "client/import/owners.h"
#include "client/import/thread_index.h"

namespace pavex {

// A message inside a file.
struct MessagePlace {
    std::string path;    // native
    uint64_t start = 0;  // bytes, the separator line not included
    uint64_t end = 0;
    std::optional<int64_t> deliveryDate;  // of the separator line, seconds since 1970
    int64_t fileDate = 0;                 // modification time of the file
    std::optional<bool> unread;           // as the mailbox has it
    bool draft = false;
    PostingLevel level = PostingLevel::kTopic;  // in its thread, of a discussion
    bool inMailbox = false;                     // from an mbox: its lines of ">From " are quoted
    MessageFacts facts;

    std::string Where() const;  // for reports: the path, and in a file of many the byte offset
};

// Opens a stream of the message with line ends and "From " lines as they were sent.  A message that lies
// in its file as it was sent is read there; another is copied into a nameless temporary file first.
// Null, with *reason set, when the file cannot be read (any more) or the copy cannot be written.
ObjectOwner<GMimeStream> OpenMessage(const MessagePlace& place, std::string* reason);

// Initializes GMime; call it before any of its calls.  May be called any number of times.
void StartMimeLibrary();

}  // namespace pavex
