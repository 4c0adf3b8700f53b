// client/search/metafile.cpp: metafiles read back.
#include "client/search/metafile.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string_view>

#include "client/search/configuration.h"
#include "client/search/file_text.h"
#include "client/store/timedate.h"

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

constexpr std::string_view kUrlKey = "com.quorvex.pavex.uri";
constexpr std::string_view kVersionKey = "com_quorvex_morvane_pavex_metafile_version";
constexpr std::string_view kVersion = "1.0.0";
constexpr std::string_view kModifiedKey = "last_modified_time";
constexpr std::string_view kBodyKey = "com.quorvex.pavex.content";
// Shown by themselves, or no text of the note.
constexpr std::string_view kOtherKeys[] = {kUrlKey,
                                           kVersionKey,
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

DocumentOwner Parse(const std::string& content)
{
    return DocumentOwner(xmlReadMemory(content.data(), static_cast<int>(content.size()), nullptr, nullptr,
                                       XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
}

std::string WithoutMarker(std::string text)
{
    text.resize(std::min(text.find(kTextMarker), text.size()));
    return text;
}

// The dictionary that a metafile is; null when the document is none.
const xmlNode* DictionaryOf(const DocumentOwner& document)
{
    const xmlNode* const root = document == nullptr ? nullptr : xmlDocGetRootElement(document.get());
    const xmlNode* const dictionary = root == nullptr ? nullptr : xmlFirstElementChild(const_cast<xmlNode*>(root));
    return IsElement(root, "plist") && IsElement(dictionary, "dict") ? dictionary : nullptr;
}

// What CheckMetafile looks at.
struct Properties {
    bool isWellFormed = true;  // keys and values in turn, each value of a type that metafiles have
    std::string url;
    std::string version;
    bool hasTime = false;  // the kind's date
    std::optional<int64_t> modified;
};

Properties ReadProperties(const xmlNode* dictionary, const SearchKind& kind)
{
    Properties properties;
    const xmlNode* key = xmlFirstElementChild(const_cast<xmlNode*>(dictionary));
    while (key != nullptr) {
        const xmlNode* const value = xmlNextElementSibling(const_cast<xmlNode*>(key));
        const bool isText = IsElement(value, "string");
        const bool isDate = IsElement(value, "date");
        if (!IsElement(key, "key") || !(isText || isDate || IsElement(value, "integer"))) {
            properties.isWellFormed = false;
            return properties;
        }
        const std::string name = TextOf(key);
        if (isText && name == kUrlKey)
            properties.url = TextOf(value);
        if (isText && name == kVersionKey)
            properties.version = TextOf(value);
        if (isDate && name == kind.timeKey) {
            const std::optional<TIMEDATE> time = TimeFromIso(TextOf(value));
            properties.hasTime = time.has_value();
            if (time && name == kModifiedKey)
                properties.modified = UnixFromTime(*time);
        }
        key = xmlNextElementSibling(const_cast<xmlNode*>(value));
    }
    return properties;
}

std::string DamageOf(const Properties& properties, const SearchKind& kind, const std::string& url)
{
    if (!properties.isWellFormed)
        return "its properties are not in order";
    if (properties.version != kVersion)
        return "it has no version, or an unknown one";
    if (properties.url != url)
        return properties.url.empty() ? "it has no address of a note" : "it has the address of another note";
    if (!properties.hasTime)
        return std::string("it has no ") + kind.timeKey + ", as a file of the kind " + kind.name + " must";
    return {};
}

}  // namespace

MetafileCheck CheckMetafile(const std::string& path, const SearchKind& kind, const std::string& url)
{
    struct stat about {};
    if (lstat(path.c_str(), &about) != 0)
        return {std::strerror(errno), {}};
    if (!S_ISREG(about.st_mode))
        return {"it is no regular file", {}};
    const std::optional<std::string> content = ReadFileText(path);
    if (!content)
        return {std::string("it cannot be read: ") + std::strerror(errno), {}};
    const DocumentOwner document = Parse(*content);
    const xmlNode* const dictionary = DictionaryOf(document);
    if (dictionary == nullptr)
        return {content->empty() ? "it is empty" : "it is no property list", {}};
    const Properties properties = ReadProperties(dictionary, kind);
    return {DamageOf(properties, kind, url), properties.modified};
}

std::optional<std::vector<std::string>> ReadMetafileTexts(const std::string& path)
{
    const DocumentOwner document = Parse(ReadFileText(path).value_or(""));
    const xmlNode* const dictionary = DictionaryOf(document);
    if (dictionary == nullptr)
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
