// client/import/message_header.cpp: GMime keeps the raw fields; their text is ours to read.
#include "client/import/message_header.h"

#include <algorithm>

#include <strings.h>

#include "client/import/header_text.h"
#include "client/import/mail_address.h"

namespace pavex {
namespace {

// A field that is longer says nothing that anybody reads; addresses of a mailing are cut at this.
constexpr size_t kLongestField = size_t{1024} * 1024;

}  // namespace

MessageHeader::MessageHeader(GMimeMessage* message, std::string guess)
    : headers_(g_mime_object_get_header_list(GMIME_OBJECT(message))), guess_(std::move(guess))
{
}

std::vector<std::string> MessageHeader::Raw(const char* name) const
{
    std::vector<std::string> values;
    const int count = g_mime_header_list_get_count(headers_);
    for (int i = 0; i < count; ++i) {
        GMimeHeader* const header = g_mime_header_list_get_header_at(headers_, i);
        const char* const value = g_mime_header_get_raw_value(header);
        if (value != nullptr && strcasecmp(g_mime_header_get_name(header), name) == 0)
            values.push_back(UnfoldHeader(std::string_view(value).substr(0, kLongestField)));
    }
    return values;
}

std::string MessageHeader::Text(const char* name) const
{
    const std::vector<std::string> values = Raw(name);
    return values.empty() ? std::string() : DecodeHeaderText(values.front(), guess_);
}

std::vector<std::string> MessageHeader::Addresses(const char* name) const
{
    std::vector<std::string> addresses;
    for (const std::string& value : Raw(name)) {
        for (std::string& address : ReadAddressList(value, guess_))
            addresses.push_back(std::move(address));
    }
    return addresses;
}

std::vector<std::string> MessageHeader::Ids(const char* name) const
{
    std::vector<std::string> ids;
    for (const std::string& value : Raw(name)) {
        for (size_t open = value.find('<'); open != value.npos; open = value.find('<', open + 1)) {
            const size_t close = value.find('>', open);
            if (close == value.npos)
                break;
            std::string id = DecodeHeaderText(std::string_view(value).substr(open + 1, close - open - 1), guess_);
            if (!id.empty() && std::find(ids.begin(), ids.end(), id) == ids.end())
                ids.push_back(std::move(id));
        }
    }
    return ids;
}

}  // namespace pavex
