// client/import/message_body.h: the readable text of a parsed message and the names of what is attached.
#pragma once

#include <string>
#include <vector>

#include <gmime/gmime.h>

namespace pavex {

struct MessageText {
    std::string text;                      // UTF-8, lines ended by "\n", no empty ones at either end
    std::vector<std::string> attachments;  // names, in order
    std::string charset;                   // declared for the first text part; empty: none
};

// Takes the best text of each part: of alternatives the plain one unless it is empty, else the HTML one;
// of related parts the root; of all others each text part that is shown in line.  Attached messages follow
// the body, each with its subject, people and date.  Attachments are named, never decoded.
// Of all parts together the first kMostTextBytes and kMostLines are read.
MessageText ReadMessageText(GMimeMessage* message);

constexpr size_t kMostTextBytes = size_t{16} * 1024 * 1024;
constexpr size_t kMostLines = 500'000;

}  // namespace pavex
