// client/import/message_note.cpp: from header fields and text to items.
#include "client/import/message_note.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "client/import/charset_text.h"
#include "client/import/mail_date.h"
#include "client/import/message_body.h"
#include "client/import/message_header.h"
#include "client/store/richtext.h"
#include "client/store/timedate.h"

namespace pavex {
namespace {

// Bytes of a text, and entries of a list, that its item can hold with room to spare.
constexpr size_t kLongestText = 16000;
constexpr size_t kMostEntries = 30000;

struct AddressRow {
    const char* field;
    const char* item;
};
constexpr AddressRow kAddresses[] = {
    {"To", "SendTo"},
    {"Cc", "CopyTo"},
    {"Bcc", "BlindCopyTo"},
    {"Reply-To", "ReplyTo"},
};

void AddList(std::string_view item, std::vector<std::string> values, Note* note)
{
    values.resize(std::min(values.size(), kMostEntries));
    if (!values.empty())
        note->items.push_back(TextListItem(item, values));
}

const char* FormOf(const MessageCircumstances& circumstances, bool reply)
{
    if (circumstances.as == ImportOptions::As::kMail)
        return reply ? "Reply" : "Memo";
    switch (circumstances.level) {
    case PostingLevel::kTopic:
        return "MainTopic";
    case PostingLevel::kResponse:
        return "Response";
    case PostingLevel::kResponseToResponse:
        return "ResponseToResponse";
    }
    return "MainTopic";
}

// The Date field; failing it the delivery line, then the newest Received field, then the file's time.
int64_t DateOf(const MessageHeader& header, const MessageCircumstances& circumstances)
{
    for (const std::string& value : header.Raw("Date")) {
        if (const std::optional<int64_t> date = ReadMailDate(value))
            return *date;
    }
    if (circumstances.deliveryDate)
        return *circumstances.deliveryDate;
    for (const std::string& value : header.Raw("Received")) {
        const size_t semicolon = value.rfind(';');
        if (semicolon == value.npos)
            continue;
        if (const std::optional<int64_t> date = ReadMailDate(std::string_view(value).substr(semicolon + 1)))
            return *date;
    }
    return circumstances.fileDate;
}

void AddPeople(const MessageHeader& header, Note* note)
{
    const std::vector<std::string> from = header.Addresses("From");
    const std::vector<std::string> sender = header.Addresses("Sender");
    const std::vector<std::string>& author = from.empty() ? sender : from;
    AddList("From", author, note);
    if (!sender.empty() && !from.empty() && sender != from)
        AddList("Principal", sender, note);
    for (const AddressRow& row : kAddresses)
        AddList(row.item, header.Addresses(row.field), note);
}

void AddThread(const MessageHeader& header, Note* note)
{
    const std::vector<std::string> ids = header.Ids("Message-ID");
    if (!ids.empty())
        note->items.push_back(TextItem("$MessageID", Utf8Prefix(ids.front(), kLongestText)));
    std::vector<std::string> references = header.Ids("References");
    for (std::string& id : header.Ids("In-Reply-To")) {
        if (std::find(references.begin(), references.end(), id) == references.end())
            references.push_back(std::move(id));
    }
    AddList("$References", std::move(references), note);
}

Item BodyItem(std::string_view text)
{
    RichTextBuilder body;
    body.AddLines(text);
    return RichTextItem("Body", body.Records());
}

bool HasField(const MessageHeader& header, const char* name)
{
    const std::vector<std::string> values = header.Raw(name);
    return std::any_of(values.begin(), values.end(), [](const std::string& value) { return !value.empty(); });
}

}  // namespace

bool ParseMessageNote(GMimeStream* stream, const MessageCircumstances& circumstances, Note* note, std::string* reason)
{
    StartMimeLibrary();
    const ObjectOwner<GMimeParser> parser(g_mime_parser_new_with_stream(stream));
    g_mime_parser_set_persist_stream(parser.get(), TRUE);
    g_mime_parser_set_format(parser.get(), GMIME_FORMAT_MESSAGE);
    const ObjectOwner<GMimeMessage> message(g_mime_parser_construct_message(parser.get(), nullptr));
    if (!message) {
        *reason = "cannot be parsed as a message";
        return false;
    }
    MessageText text = ReadMessageText(message.get());
    const MessageHeader header(message.get(), text.charset);
    const bool reply = HasField(header, "In-Reply-To") || HasField(header, "References");

    note->items.clear();
    note->items.push_back(TextItem("Form", FormOf(circumstances, reply)));
    AddPeople(header, note);
    note->items.push_back(TextItem("Subject", Utf8Prefix(header.Text("Subject"), kLongestText)));
    const TIMEDATE date = TimeFromUnix(DateOf(header, circumstances));
    if (!circumstances.draft)
        note->items.push_back(TimeItem("PostedDate", date));
    else
        note->modified = date;  // a draft's own time is all the time it has
    if (circumstances.as == ImportOptions::As::kDiscussion)
        note->created = date;
    AddThread(header, note);
    AddList("$FILE", std::move(text.attachments), note);
    note->items.push_back(BodyItem(text.text));
    return true;
}

bool MakeMessageNote(const MessagePlace& place, ImportOptions::As as, Note* note, std::string* reason)
{
    StartMimeLibrary();
    const ObjectOwner<GMimeStream> stream = OpenMessage(place, reason);
    if (!stream)
        return false;
    const MessageCircumstances circumstances{as, place.level, place.deliveryDate, place.fileDate, place.draft};
    return ParseMessageNote(stream.get(), circumstances, note, reason);
}

}  // namespace pavex
