// client/search/metafile.cpp: the texts of a metafile.
#include "client/search/metafile.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <memory>
#include <string_view>

#include "client/search/configuration.h"
#include "client/search/file_text.h"

namespace pavex {

namespace {

struct DocumentReleaser {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
using DocumentOwner = std::unique_ptr<xmlDoc, DocumentReleaser>;

struct TextReleaser {
    void operator()(xmlChar* text) const { xmlFree(text); }
};
using XmlTextOwner = std::unique_ptr<xmlChar, TextReleaser>;

constexpr std::string_view kBodyKey = "com.quorvex.pavex.content";
// Shown by themselves, or no text of the note.
constexpr std::string_view kOtherKeys[] = {"com.quorvex.pavex.uri",
                                           "com_quorvex_morvane_pavex_metafile_version",
                                           "com_quorvex_morvane_pavex_history_content_url",
                                           "com_quorvex_morvane_pavex_display_name",
                                           "title",
                                           "subject",
                                           "from",
                                           "to",
                                           "cc",
                                           "bcc",
                                           "discussion_authors",
                                           "organizer",
                                           "owner",
                                           "attendees",
                                           "recurrence_pattern"};

bool IsElement(const xmlNode* node, std::string_view name)
{
    return node != nullptr && node->type == XML_ELEMENT_NODE && name == reinterpret_cast<const char*>(node->name);
}

std::string TextOf(const xmlNode* node)
{
    const XmlTextOwner text(xmlNodeGetContent(node));
    return text == nullptr ? std::string() : reinterpret_cast<const char*>(text.get());
}

DocumentOwner Parse(const std::string& path)
{
    const std::string content = ReadFileText(path).value_or("");
    return DocumentOwner(xmlReadMemory(content.data(), static_cast<int>(content.size()), nullptr, nullptr,
                                       XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
}

std::string WithoutMarker(std::string text)
{
    text.resize(std::min(text.find(kTextMarker), text.size()));
    return text;
}

}  // namespace

std::optional<std::vector<std::string>> ReadMetafileTexts(const std::string& path)
{
    const DocumentOwner document = Parse(path);
    const xmlNode* const root = document == nullptr ? nullptr : xmlDocGetRootElement(document.get());
    const xmlNode* const dictionary = root == nullptr ? nullptr : xmlFirstElementChild(const_cast<xmlNode*>(root));
    if (!IsElement(root, "plist") || !IsElement(dictionary, "dict"))
        return std::nullopt;
    std::vector<std::string> texts(1);  // the body's place
    const xmlNode* key = xmlFirstElementChild(const_cast<xmlNode*>(dictionary));
    for (; key != nullptr; key = xmlNextElementSibling(const_cast<xmlNode*>(key))) {
        const xmlNode* const value = xmlNextElementSibling(const_cast<xmlNode*>(key));
        if (!IsElement(key, "key") || value == nullptr)
            continue;
        const std::string name = TextOf(key);
        if (name == kBodyKey)
            texts.front() = WithoutMarker(TextOf(value));
        else if (IsElement(value, "string") && std::ranges::find(kOtherKeys, name) == std::end(kOtherKeys))
            texts.push_back(TextOf(value));
    }
    return texts;
}

}  // namespace pavex
