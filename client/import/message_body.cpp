// client/import/message_body.cpp: which parts of a message are its text, and how each is read.
#include "client/import/message_body.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include <strings.h>

#include "client/import/charset_text.h"
#include "client/import/flowed_text.h"
#include "client/import/header_text.h"
#include "client/import/html_text.h"
#include "client/import/message_header.h"

namespace pavex {
namespace {

constexpr int kDeepestPart = 60;

// Text media types whose content is for programs.
constexpr const char* kUnreadableText[] = {"calendar", "vcard", "x-vcard", "directory", "css", "javascript", "xml"};

std::string_view OrEmpty(const char* text)
{
    return text != nullptr ? std::string_view(text) : std::string_view();
}

bool IsBlankText(std::string_view text)
{
    return text.find_first_not_of(" \t\r\n\f") == text.npos;
}

bool IsType(GMimeObject* part, const char* type, const char* subtype)
{
    GMimeContentType* const contentType = g_mime_object_get_content_type(part);
    return contentType != nullptr && g_mime_content_type_is_type(contentType, type, subtype);
}

bool IsAttachment(GMimeObject* part)
{
    const char* const disposition = g_mime_object_get_disposition(part);
    return disposition != nullptr && strcasecmp(disposition, "attachment") == 0;
}

bool IsReadableText(GMimeObject* part)
{
    // A media type that is none stands for the default one, which is plain text.
    const std::string_view declared = OrEmpty(g_mime_object_get_header(part, "Content-Type"));
    if (!declared.empty() && declared.find('/') == declared.npos)
        return true;
    if (!IsType(part, "text", "*"))
        return false;
    return std::none_of(std::begin(kUnreadableText), std::end(kUnreadableText),
                        [&](const char* subtype) { return IsType(part, "text", subtype); });
}

bool HasParameter(GMimeObject* part, const char* name, const char* value)
{
    const char* const found = g_mime_object_get_content_type_parameter(part, name);
    return found != nullptr && strcasecmp(found, value) == 0;
}

// Decoded content, at most maxBytes; the rest is not even read.
std::string ReadContent(GMimePart* part, size_t maxBytes)
{
    std::string content;
    GMimeDataWrapper* const wrapper = g_mime_part_get_content(part);
    GMimeStream* const stream = wrapper != nullptr ? g_mime_data_wrapper_get_stream(wrapper) : nullptr;
    if (stream == nullptr || g_mime_stream_reset(stream) != 0)
        return content;
    GMimeEncoding decoder;
    g_mime_encoding_init_decode(&decoder, g_mime_data_wrapper_get_encoding(wrapper));
    std::array<char, 16384> raw{};
    std::string decoded;
    while (content.size() < maxBytes) {
        const ssize_t count = g_mime_stream_read(stream, raw.data(), raw.size());
        if (count <= 0)
            break;
        decoded.resize(g_mime_encoding_outlen(&decoder, static_cast<size_t>(count)) + 64);
        decoded.resize(g_mime_encoding_step(&decoder, raw.data(), static_cast<size_t>(count), decoded.data()));
        content += decoded;
    }
    // Missing padding would cost the last character.
    const std::string_view padding = decoder.encoding == GMIME_CONTENT_ENCODING_BASE64 ? "==" : "";
    decoded.resize(g_mime_encoding_outlen(&decoder, padding.size()) + 64);
    decoded.resize(g_mime_encoding_flush(&decoder, padding.data(), padding.size(), decoded.data()));
    content += decoded;
    if (content.size() > maxBytes)
        content.resize(maxBytes);
    return content;
}

class TextCollector {
public:
    explicit TextCollector(MessageText* result) : result_(result) {}

    void Collect(GMimeMessage* message)
    {
        if (GMimeObject* const root = g_mime_message_get_mime_part(message))
            result_->text = TextOf(root, 0);
        Append(&result_->text, attached_);
    }

private:
    // The text of a part; what is attached in it is noted on the way.
    std::string TextOf(GMimeObject* part, int depth)
    {
        if (depth > kDeepestPart)
            return {};
        if (GMIME_IS_MESSAGE_PART(part)) {
            TakeAttachedMessage(GMIME_MESSAGE_PART(part), depth);
            return {};
        }
        if (GMIME_IS_MULTIPART(part))
            return TextOfMultipart(GMIME_MULTIPART(part), depth);
        if (!GMIME_IS_PART(part))
            return {};
        NoteName(GMIME_PART(part));
        if (IsAttachment(part) || !IsReadableText(part))
            return {};
        return TextOfLeaf(GMIME_PART(part));
    }

    std::string TextOfMultipart(GMimeMultipart* multipart, int depth)
    {
        const int count = g_mime_multipart_get_count(multipart);
        if (count == 0)  // no boundary was ever met: what is there is before the first
            return Budgeted(CleanText(Utf8FromBytes(OrEmpty(g_mime_multipart_get_prologue(multipart)), {})));
        if (IsType(GMIME_OBJECT(multipart), "multipart", "alternative"))
            return TextOfAlternatives(multipart, count, depth);
        if (IsType(GMIME_OBJECT(multipart), "multipart", "related"))
            return TextOfRelated(multipart, count, depth);
        std::string text;
        for (int i = 0; i < count; ++i)
            Append(&text, TextOf(g_mime_multipart_get_part(multipart, i), depth + 1));
        return text;
    }

    static int Rank(GMimeObject* part)
    {
        if (IsAttachment(part))
            return 0;
        if (IsType(part, "text", "plain"))
            return 3;
        return IsType(part, "text", "html") || GMIME_IS_MULTIPART(part) ? 2 : 1;
    }

    // The plain one unless it is empty; the others from the last, which is the sender's best.
    std::string TextOfAlternatives(GMimeMultipart* multipart, int count, int depth)
    {
        std::string text;
        for (int rank = 3; rank >= 0; --rank) {
            for (int i = count; i-- > 0;) {
                GMimeObject* const part = g_mime_multipart_get_part(multipart, i);
                if (Rank(part) != rank)
                    continue;
                if (IsBlankText(text))
                    text = TextOf(part, depth + 1);
                else
                    NoteNames(part, depth + 1);
            }
        }
        return text;
    }

    std::string TextOfRelated(GMimeMultipart* multipart, int count, int depth)
    {
        const char* const start = g_mime_object_get_content_type_parameter(GMIME_OBJECT(multipart), "start");
        int root = start != nullptr ? g_mime_multipart_index_of(multipart, PartWithId(multipart, start)) : 0;
        root = std::clamp(root, 0, count - 1);
        std::string text = TextOf(g_mime_multipart_get_part(multipart, root), depth + 1);
        for (int i = 0; i < count; ++i) {
            GMimeObject* const part = g_mime_multipart_get_part(multipart, i);
            if (i != root && IsBlankText(text))
                text = TextOf(part, depth + 1);
            else if (i != root)
                NoteNames(part, depth + 1);
        }
        return text;
    }

    static GMimeObject* PartWithId(GMimeMultipart* multipart, std::string_view id)
    {
        while (!id.empty() && (id.front() == '<' || id.front() == ' '))
            id.remove_prefix(1);
        id = id.substr(0, id.find('>'));
        const int count = g_mime_multipart_get_count(multipart);
        for (int i = 0; i < count; ++i) {
            GMimeObject* const part = g_mime_multipart_get_part(multipart, i);
            if (OrEmpty(g_mime_object_get_content_id(part)) == id)
                return part;
        }
        return g_mime_multipart_get_part(multipart, 0);
    }

    // Names what is attached in parts whose text is not wanted.
    void NoteNames(GMimeObject* part, int depth)
    {
        if (depth > kDeepestPart)
            return;
        if (GMIME_IS_MESSAGE_PART(part)) {
            TakeAttachedMessage(GMIME_MESSAGE_PART(part), depth);
        } else if (GMIME_IS_MULTIPART(part)) {
            const int count = g_mime_multipart_get_count(GMIME_MULTIPART(part));
            for (int i = 0; i < count; ++i)
                NoteNames(g_mime_multipart_get_part(GMIME_MULTIPART(part), i), depth + 1);
        } else if (GMIME_IS_PART(part)) {
            NoteName(GMIME_PART(part));
        }
    }

    void NoteName(GMimePart* part) { AddName(OrEmpty(g_mime_part_get_filename(part))); }

    // Senders' folders are nobody's business: the last step of the path is the name.
    void AddName(std::string_view given)
    {
        constexpr size_t kLongestName = 1000;
        std::string name = DecodeHeaderText(UnfoldHeader(given), result_->charset);
        name.erase(0, name.find_last_of("/\\") + 1);
        if (!name.empty())
            result_->attachments.emplace_back(Utf8Prefix(name, kLongestName));
    }

    void TakeAttachedMessage(GMimeMessagePart* part, int depth)
    {
        const char* name = g_mime_object_get_content_disposition_parameter(GMIME_OBJECT(part), "filename");
        if (name == nullptr)
            name = g_mime_object_get_content_type_parameter(GMIME_OBJECT(part), "name");
        AddName(OrEmpty(name));
        GMimeMessage* const message = g_mime_message_part_get_message(part);
        if (message == nullptr)
            return;
        std::string text = HeaderOf(message);
        // Its own attached messages go behind it, not into it.
        std::string outer = std::move(attached_);
        attached_.clear();
        if (GMimeObject* const root = g_mime_message_get_mime_part(message))
            Append(&text, TextOf(root, depth + 1));
        Append(&outer, text);
        Append(&outer, attached_);
        attached_ = std::move(outer);
    }

    std::string HeaderOf(GMimeMessage* message)
    {
        const MessageHeader header(message, result_->charset);
        std::string text;
        for (const char* name : {"Subject", "From", "To", "Cc", "Date"}) {
            std::string value;
            if (std::string_view(name) == "Subject" || std::string_view(name) == "Date") {
                value = header.Text(name);
            } else {
                for (const std::string& address : header.Addresses(name))
                    value += (value.empty() ? "" : ", ") + address;
            }
            if (!value.empty())
                text += std::string(name) + ": " + value + "\n";
        }
        return Budgeted(std::move(text));
    }

    std::string TextOfLeaf(GMimePart* part)
    {
        GMimeObject* const object = GMIME_OBJECT(part);
        const std::string bytes = ReadContent(part, bytesLeft_);
        std::string charset(OrEmpty(g_mime_object_get_content_type_parameter(object, "charset")));
        const bool html = IsType(object, "text", "html");
        if (html && !IsKnownCharset(charset))
            charset = HtmlMetaCharset(bytes);
        if (result_->charset.empty())
            result_->charset = charset;
        std::string text = CleanText(Utf8FromBytes(bytes, charset));
        if (html)
            text = TextFromHtml(text);
        else if (HasParameter(object, "format", "flowed"))
            text = JoinFlowedText(text, HasParameter(object, "delsp", "yes"));
        return Budgeted(std::move(text));
    }

    // Takes the text off what may still be read of this message.
    std::string Budgeted(std::string text)
    {
        text.resize(Utf8Prefix(text, bytesLeft_).size());
        const auto lines = static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
        if (lines > linesLeft_) {
            size_t end = 0;
            for (size_t line = 0; line < linesLeft_; ++line)
                end = text.find('\n', end) + 1;
            text.resize(end);
        }
        linesLeft_ -= std::min(lines, linesLeft_);
        bytesLeft_ -= text.size();
        return text;
    }

    // Parts are set off by an empty line.
    static void Append(std::string* text, std::string_view more)
    {
        if (IsBlankText(more))
            return;
        if (!text->empty())
            *text += text->back() == '\n' ? "\n" : "\n\n";
        *text += more;
    }

    MessageText* result_;
    std::string attached_;  // text of attached messages, in order
    size_t bytesLeft_ = kMostTextBytes;
    size_t linesLeft_ = kMostLines;
};

void TrimEmptyLines(std::string* text)
{
    size_t start = 0;
    for (size_t end = text->find('\n'); end != text->npos; end = text->find('\n', start)) {
        if (!IsBlankText(std::string_view(*text).substr(start, end - start)))
            break;
        start = end + 1;
    }
    text->erase(0, start);
    const size_t last = text->find_last_not_of(" \t\n");
    text->erase(last == text->npos ? 0 : last + 1);
    if (!text->empty())
        *text += '\n';
}

}  // namespace

MessageText ReadMessageText(GMimeMessage* message)
{
    MessageText result;
    TextCollector(&result).Collect(message);
    TrimEmptyLines(&result.text);
    return result;
}

}  // namespace pavex
