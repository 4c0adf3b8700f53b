// client/import/message_scan.cpp: digest, identity and flags of a message, from its lines.
#include "client/import/message_scan.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>

#include <strings.h>

#include "client/import/words.h"

namespace pavex {
namespace {

constexpr size_t kFieldBytesKept = 2000;
constexpr size_t kLongestId = 500;
// Ordinary mail has a few dozen lines that begin with "--"; a part is a kilobyte of memory in the parser.
constexpr uint64_t kMostDashLines = 50000;
// Longest preamble or epilogue of a multipart message that is parsed, in bytes.
constexpr uint64_t kLongestOutside = size_t{1024} * 1024;

std::string_view Trimmed(std::string_view text)
{
    while (!text.empty() && static_cast<unsigned char>(text.front()) <= ' ')
        text.remove_prefix(1);
    while (!text.empty() && static_cast<unsigned char>(text.back()) <= ' ')
        text.remove_suffix(1);
    return text;
}

// The text between brackets, or all of it where there are none.
std::string IdOf(std::string_view value)
{
    const size_t open = value.find('<');
    const size_t close = value.find('>', open == value.npos ? 0 : open);
    if (open != value.npos && close != value.npos)
        value = value.substr(open + 1, close - open - 1);
    std::string id;
    for (const char c : value.substr(0, kLongestId)) {
        if (static_cast<unsigned char>(c) > ' ')
            id += c;
    }
    return id;
}

void TakeMessageId(std::string_view value, MessageFacts* facts)
{
    if (facts->messageId.empty())
        facts->messageId = IdOf(value);
}

// The last one is the parent, whatever In-Reply-To says.
void TakeReferences(std::string_view value, MessageFacts* facts)
{
    facts->references = static_cast<int>(std::count(value.begin(), value.end(), '<'));
    if (facts->references > 0)
        facts->parentId = IdOf(value.substr(value.rfind('<')));
}

void TakeInReplyTo(std::string_view value, MessageFacts* facts)
{
    if (facts->parentId.empty() && value.find('<') != value.npos)
        facts->parentId = IdOf(value);
}

// "R" read, "O" seen by the mail program; as Unix mail programs keep it.
void TakeStatus(std::string_view value, MessageFacts* facts)
{
    facts->unread = value.find('R') == value.npos;
}

void TakeXStatus(std::string_view value, MessageFacts* facts)
{
    facts->draft = facts->draft || value.find('T') != value.npos;
    facts->deleted = facts->deleted || value.find('D') != value.npos;
}

void TakeMozillaStatus(std::string_view value, MessageFacts* facts)
{
    constexpr unsigned kRead = 0x0001;
    constexpr unsigned kExpunged = 0x0008;
    value = Trimmed(value);
    unsigned flags = 0;
    if (std::from_chars(value.data(), value.data() + value.size(), flags, 16).ec != std::errc())
        return;
    facts->unread = (flags & kRead) == 0;
    facts->deleted = facts->deleted || (flags & kExpunged) != 0;
}

void TakeContentLength(std::string_view value, MessageFacts* facts)
{
    value = Trimmed(value);
    uint64_t length = 0;
    if (std::from_chars(value.data(), value.data() + value.size(), length).ec == std::errc())
        facts->contentLength = length;
}

void TakeMailboxRecord(std::string_view, MessageFacts* facts)
{
    facts->mailboxRecord = true;
}

void Nothing(std::string_view, MessageFacts*) {}

// The delimiter line of a multipart message, from its Content-Type; empty when there is none to find.
std::string DelimiterOf(std::string_view contentType)
{
    static constexpr std::string_view kName = "boundary=";
    const auto* const found = std::search(contentType.begin(), contentType.end(), kName.begin(), kName.end(),
                                          [](char a, char b) { return (a | 0x20) == (b | 0x20); });
    if (found == contentType.end() || strncasecmp(contentType.data(), "multipart/", 10) != 0)
        return {};
    std::string_view value = contentType.substr(static_cast<size_t>(found - contentType.begin()) + kName.size());
    const bool quoted = value.starts_with('"');
    value.remove_prefix(quoted ? 1 : 0);
    value = value.substr(0, value.find_first_of(quoted ? "\"\r\n" : "; \t\r\n("));
    return value.empty() ? std::string() : "--" + std::string(value);
}

struct FieldRow {
    const char* name;
    bool inDigest;  // false: kept by the mailbox, not sent by anybody
    bool onlyMail;  // its presence says that this is a message
    void (*take)(std::string_view value, MessageFacts* facts);
};
constexpr FieldRow kFields[] = {
    {"Message-ID", true, true, TakeMessageId},
    {"From", true, true, Nothing},
    {"To", true, true, Nothing},
    {"Cc", true, true, Nothing},
    {"Date", true, true, Nothing},
    {"Received", true, true, Nothing},
    {"References", true, true, TakeReferences},
    {"In-Reply-To", true, true, TakeInReplyTo},
    {"Return-Path", true, true, Nothing},
    {"Delivered-To", true, true, Nothing},
    {"Subject", true, true, Nothing},
    {"Sender", true, true, Nothing},
    {"Reply-To", true, true, Nothing},
    {"MIME-Version", true, true, Nothing},
    {"Content-Type", true, true, Nothing},
    {"Status", false, false, TakeStatus},
    {"X-Status", false, false, TakeXStatus},
    {"X-Mozilla-Status", false, false, TakeMozillaStatus},
    {"X-Mozilla-Status2", false, false, Nothing},
    {"X-Mozilla-Keys", false, false, Nothing},
    {"X-Keywords", false, false, Nothing},
    {"X-UID", false, false, Nothing},
    {"X-IMAP", false, false, TakeMailboxRecord},
    {"X-IMAPbase", false, false, Nothing},
    {"Content-Length", false, false, TakeContentLength},
    {"Lines", false, false, Nothing},
};

const FieldRow* FindField(std::string_view name)
{
    const auto* row = std::find_if(std::begin(kFields), std::end(kFields),
                                   [&](const FieldRow& each) { return SameWord(name, each.name); });
    return row == std::end(kFields) ? nullptr : row;
}

size_t NameLength(std::string_view line)
{
    size_t length = 0;
    while (length < line.size() && line[length] > ' ' && line[length] != ':' && line[length] != 0x7F)
        ++length;
    return length;
}

// Number of '>' before "From " at the front; npos when there is no such line.
size_t QuoteDepth(std::string_view line)
{
    const size_t depth = std::min(line.find_first_not_of('>'), line.size());
    return line.substr(depth).starts_with("From ") ? depth : line.npos;
}

}  // namespace

bool IsHeaderLine(std::string_view line)
{
    const size_t length = NameLength(line);
    if (length == 0 || length > 200)
        return false;
    const size_t colon = line.find_first_not_of(" \t", length);
    return colon != line.npos && line[colon] == ':';
}

MessageScan::MessageScan() : checksum_(g_checksum_new(G_CHECKSUM_SHA256)) {}

void MessageScan::Hash(std::string_view bytes)
{
    g_checksum_update(checksum_.get(), reinterpret_cast<const guchar*>(bytes.data()),
                      static_cast<gssize>(bytes.size()));
}

void MessageScan::Add(const Line& line)
{
    if (!facts_.headerEnded && line.starts && line.text.empty() && line.ends) {
        TakeField();
        facts_.headerEnded = true;
        outside_ = !boundary_.empty();
        outsideSince_ = line.endOffset;
    }
    if (!facts_.headerEnded)
        AddHeaderLine(line);
    if (line.text.empty() && line.starts) {
        ++pendingBlanks_;
        return;
    }
    if (leftOut_ && !facts_.headerEnded)
        return;
    std::string_view text = line.text;
    if (line.starts) {
        if (const size_t depth = QuoteDepth(text); depth != text.npos) {
            facts_.quotedFrom = facts_.quotedFrom || depth > 0;
            text.remove_prefix(depth);
        }
        WatchBoundaries(line);
        // A line break for each line before this one: those at the end of the message are never hashed.
        for (uint64_t lines = pendingBlanks_ + (anyLine_ ? 1 : 0); lines > 0; --lines)
            Hash("\n");
        pendingBlanks_ = 0;
        anyLine_ = true;
    }
    Hash(text);
}

void MessageScan::WatchBoundaries(const Line& line)
{
    if (facts_.parsedEnd != 0 || !facts_.headerEnded)
        return;
    const bool dashes = line.text.starts_with("--");
    if (dashes && ++dashLines_ > kMostDashLines)
        facts_.parsedEnd = line.offset;
    if (boundary_.empty())
        return;
    if (dashes && line.text.starts_with(boundary_)) {
        outside_ = line.text.substr(boundary_.size()).starts_with("--");
        outsideSince_ = line.endOffset;
    } else if (outside_ && line.offset - outsideSince_ > kLongestOutside) {
        facts_.parsedEnd = line.offset;
    }
}

void MessageScan::AddHeaderLine(const Line& line)
{
    facts_.headerBytes += line.text.size() + 1;
    facts_.nulInHeader = facts_.nulInHeader || line.text.find('\0') != line.text.npos;
    const bool continues = !line.starts || line.text.starts_with(' ') || line.text.starts_with('\t');
    if (!continues) {
        TakeField();
        leftOut_ = false;
        if (IsHeaderLine(line.text)) {
            ++facts_.headerFields;
            const FieldRow* row = FindField(line.text.substr(0, NameLength(line.text)));
            leftOut_ = row != nullptr && !row->inDigest;
            facts_.mailFields += row != nullptr && row->onlyMail;
        }
    }
    if (field_.size() < kFieldBytesKept)
        field_ += line.text.substr(0, kFieldBytesKept - field_.size());
}

void MessageScan::TakeField()
{
    const std::string_view field = field_;
    if (IsHeaderLine(field)) {
        const FieldRow* row = FindField(field.substr(0, NameLength(field)));
        const std::string_view value = Trimmed(field.substr(field.find(':') + 1));
        if (row != nullptr)
            row->take(value, &facts_);
        if (SameWord(field.substr(0, NameLength(field)), "Content-Type"))
            boundary_ = DelimiterOf(value);
    }
    field_.clear();
}

MessageFacts MessageScan::Finish()
{
    if (!facts_.headerEnded)
        TakeField();
    facts_.digest = g_checksum_get_string(checksum_.get());
    return std::move(facts_);
}

}  // namespace pavex
