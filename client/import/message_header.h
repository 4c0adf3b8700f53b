// client/import/message_header.h: the header fields of a parsed message, as text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <gmime/gmime.h>

namespace pavex {

class MessageHeader {
public:
    // message: borrowed for the life of the object.  guess: charset of raw 8-bit text; may be empty.
    MessageHeader(GMimeMessage* message, std::string guess);

    // Unfolded raw values of all fields of the name, in order.
    std::vector<std::string> Raw(const char* name) const;
    // Decoded text of the first field of the name; empty when there is none.
    std::string Text(const char* name) const;
    // The addresses of all fields of the name, as people read them.
    std::vector<std::string> Addresses(const char* name) const;
    // What stands in angle brackets in all fields of the name (message ids), each once, in order.
    std::vector<std::string> Ids(const char* name) const;

private:
    GMimeHeaderList* headers_;
    std::string guess_;
};

}  // namespace pavex
