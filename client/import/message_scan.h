// client/import/message_scan.h: what must be known of a message before it is worth parsing: whether it is
// one, who it is, whether it changed.  Costs one look at each byte and no memory to speak of.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "client/import/line_reader.h"
#include "client/import/owners.h"

namespace pavex {

struct MessageFacts {
    std::string messageId;       // without brackets; empty: none
    std::string parentId;        // of the message that it answers
    int references = 0;          // messages before it in its thread, by its own account
    std::string digest;          // SHA-256 in hex of the canonical bytes
    std::optional<bool> unread;  // by the fields that mailbox programs add; none of them: nothing
    bool draft = false;          // by the same fields
    bool deleted = false;        // marked as deleted, only waiting to be purged
    bool mailboxRecord = false;  // a mail server's own record of the mailbox, no message
    uint64_t headerFields = 0;
    uint64_t mailFields = 0;  // of them those that only messages have
    uint64_t headerBytes = 0;
    bool quotedFrom = false;  // has lines of ">From "
    bool nulInHeader = false;
    // Offset where parsing can stop: past the sane number of lines that could be MIME boundaries, or where no
    // boundary was met for so long that the parser would hold all of it as a preamble or epilogue; 0: the end.
    uint64_t parsedEnd = 0;
    bool headerEnded = false;
    std::optional<uint64_t> contentLength;
};

// Takes the lines of one message in order.  The canonical bytes leave out what does not make the message:
// line end conventions, empty lines at its end, quoting of "From ", and the fields with which mailbox
// programs keep flags; so the same message from an mbox and from a Maildir has one digest.
class MessageScan {
public:
    MessageScan();
    void Add(const Line& line);
    const MessageFacts& Facts() const { return facts_; }  // digest and id not yet filled in
    MessageFacts Finish();

private:
    void AddHeaderLine(const Line& line);
    void TakeField();
    void WatchBoundaries(const Line& line);
    void Hash(std::string_view bytes);

    ChecksumOwner checksum_;
    MessageFacts facts_;
    uint64_t pendingBlanks_ = 0;  // empty lines that count only when something follows
    uint64_t dashLines_ = 0;
    std::string boundary_;       // of a multipart message, with its dashes
    uint64_t outsideSince_ = 0;  // offset from which on the lines are in no part
    bool outside_ = false;
    std::string field_;     // first bytes of the field that is being read, name and value
    bool leftOut_ = false;  // the field is no part of the digest
    bool anyLine_ = false;
};

// True when the text begins with a field name and a colon.
bool IsHeaderLine(std::string_view line);

}  // namespace pavex
