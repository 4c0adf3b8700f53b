// client/import/html_text.cpp: HTML turned into lines of text from the events of libxml2's parser.
// Events rather than a tree: mail nests tables by the hundred, and a tree of a hostile one fills memory.
#include "client/import/html_text.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <memory>
#include <vector>

#include <libxml/HTMLparser.h>
#include <libxml/parserInternals.h>

namespace pavex {
namespace {

// More open elements than this are no document: what follows is not read, since the parser looks through all
// of them at each end tag.
constexpr int kDeepestElement = 600;

enum class Layout {
    kInline,
    kLine,       // begins and ends a line
    kParagraph,  // an empty line before and after
    kBreak,
    kRule,
    kRow,
    kCell,
    kList,
    kNumberedList,
    kListEntry,
    kPreformatted,
    kImage,
    kHidden,  // its text is not for readers
};

struct ElementRow {
    const char* name;
    Layout layout;
};
constexpr ElementRow kElements[] = {
    {"address", Layout::kLine},    {"article", Layout::kLine},
    {"aside", Layout::kLine},      {"blockquote", Layout::kParagraph},
    {"br", Layout::kBreak},        {"caption", Layout::kLine},
    {"center", Layout::kLine},     {"dd", Layout::kLine},
    {"div", Layout::kLine},        {"dl", Layout::kParagraph},
    {"dt", Layout::kLine},         {"fieldset", Layout::kLine},
    {"footer", Layout::kLine},     {"form", Layout::kLine},
    {"h1", Layout::kParagraph},    {"h2", Layout::kParagraph},
    {"h3", Layout::kParagraph},    {"h4", Layout::kParagraph},
    {"h5", Layout::kParagraph},    {"h6", Layout::kParagraph},
    {"head", Layout::kHidden},     {"header", Layout::kLine},
    {"hr", Layout::kRule},         {"img", Layout::kImage},
    {"li", Layout::kListEntry},    {"main", Layout::kLine},
    {"nav", Layout::kLine},        {"object", Layout::kInline},
    {"ol", Layout::kNumberedList}, {"option", Layout::kLine},
    {"p", Layout::kParagraph},     {"pre", Layout::kPreformatted},
    {"script", Layout::kHidden},   {"section", Layout::kLine},
    {"style", Layout::kHidden},    {"table", Layout::kLine},
    {"td", Layout::kCell},         {"template", Layout::kHidden},
    {"th", Layout::kCell},         {"title", Layout::kHidden},
    {"tr", Layout::kRow},          {"ul", Layout::kList},
};

Layout LayoutOf(const char* name)
{
    const auto* row = std::find_if(std::begin(kElements), std::end(kElements),
                                   [&](const ElementRow& each) { return std::strcmp(each.name, name) == 0; });
    return row == std::end(kElements) ? Layout::kInline : row->layout;
}

// The lines so far, and what is owed before the next word: breaks, a space, a tab.
class TextLines {
public:
    void Break(int emptyLines)
    {
        breaks_ = std::max(breaks_, emptyLines + 1);
        space_ = tab_ = false;
    }
    void HardBreak()
    {
        if (breaks_ > 0 || text_.empty()) {
            breaks_ += text_.empty() ? 0 : 1;
        } else {
            breaks_ = 1;
        }
        breaks_ = std::min(breaks_, 3);
        space_ = tab_ = false;
    }
    // Before a cell: only between two that have text, on one line.
    void Tab()
    {
        tab_ = tab_ || (breaks_ == 0 && !text_.empty());
        space_ = false;
    }
    void Mark(std::string mark) { mark_ = std::move(mark); }
    void Space() { space_ = true; }
    void Raw(std::string_view piece)
    {
        Settle();
        text_ += piece;
    }
    std::string Take()
    {
        if (!text_.empty() && text_.back() != '\n')
            text_ += '\n';
        return std::move(text_);
    }

private:
    void Settle()
    {
        const bool atStart = text_.empty() || breaks_ > 0;
        if (!text_.empty())
            text_.append(static_cast<size_t>(breaks_), '\n');
        if (!atStart && tab_)
            text_ += '\t';
        else if (!atStart && space_)
            text_ += ' ';
        text_ += mark_;
        mark_.clear();
        breaks_ = 0;
        space_ = tab_ = false;
    }

    std::string text_;
    std::string mark_;  // of the list entry that begins
    int breaks_ = 0;
    bool space_ = false;
    bool tab_ = false;
};

class HtmlWalk {
public:
    static void Start(void* context, const xmlChar* name, const xmlChar** attributes)
    {
        static_cast<HtmlWalk*>(context)->Open(reinterpret_cast<const char*>(name),
                                              reinterpret_cast<const char**>(attributes));
    }
    static void End(void* context, const xmlChar* name)
    {
        static_cast<HtmlWalk*>(context)->Close(reinterpret_cast<const char*>(name));
    }
    static void Characters(void* context, const xmlChar* text, int length)
    {
        static_cast<HtmlWalk*>(context)->Text({reinterpret_cast<const char*>(text), static_cast<size_t>(length)});
    }

    // parser: borrowed; stopped when the document is too deep.
    void StopsIn(htmlParserCtxtPtr parser) { parser_ = parser; }
    std::string Take() { return lines_.Take(); }

private:
    void Open(const char* name, const char** attributes)
    {
        if (++depth_ > kDeepestElement)
            xmlStopParser(parser_);
        switch (LayoutOf(name)) {
        case Layout::kInline:
            break;
        case Layout::kLine:
        case Layout::kRow:
            lines_.Break(0);
            break;
        case Layout::kParagraph:
            lines_.Break(1);
            break;
        case Layout::kBreak:
            if (hidden_ == 0)
                lines_.HardBreak();
            break;
        case Layout::kRule:
            lines_.Break(1);
            break;
        case Layout::kCell:
            lines_.Tab();
            break;
        case Layout::kList:
        case Layout::kNumberedList:
            lines_.Break(0);
            counters_.push_back(LayoutOf(name) == Layout::kList ? -1 : 0);
            break;
        case Layout::kListEntry:
            lines_.Break(0);
            lines_.Mark(EntryMark());
            break;
        case Layout::kPreformatted:
            lines_.Break(1);
            ++preformatted_;
            break;
        case Layout::kImage:
            Alternative(attributes);
            break;
        case Layout::kHidden:
            ++hidden_;
            break;
        }
    }

    void Close(const char* name)
    {
        --depth_;
        switch (LayoutOf(name)) {
        case Layout::kInline:
        case Layout::kBreak:
        case Layout::kRule:
        case Layout::kCell:
        case Layout::kImage:
            break;
        case Layout::kLine:
        case Layout::kRow:
            lines_.Break(0);
            break;
        case Layout::kListEntry:
            lines_.Mark({});
            lines_.Break(0);
            break;
        case Layout::kParagraph:
            lines_.Break(1);
            break;
        case Layout::kList:
        case Layout::kNumberedList:
            if (!counters_.empty())
                counters_.pop_back();
            lines_.Break(counters_.empty() ? 1 : 0);
            break;
        case Layout::kPreformatted:
            preformatted_ -= preformatted_ > 0;
            lines_.Break(1);
            break;
        case Layout::kHidden:
            hidden_ -= hidden_ > 0;
            break;
        }
    }

    std::string EntryMark()
    {
        if (counters_.empty() || counters_.back() < 0)
            return "- ";
        return std::to_string(++counters_.back()) + ". ";
    }

    void Alternative(const char** attributes)
    {
        for (; attributes != nullptr && attributes[0] != nullptr; attributes += 2) {
            if (std::strcmp(attributes[0], "alt") == 0 && attributes[1] != nullptr)
                Text(attributes[1]);
        }
    }

    void Text(std::string_view text)
    {
        if (hidden_ > 0)
            return;
        if (preformatted_ > 0)
            Preformatted(text);
        else
            Flowing(text);
    }

    // White space, no-break spaces among it, runs together into one space.
    void Flowing(std::string_view text)
    {
        for (size_t i = 0; i < text.size();) {
            const size_t blank = BlankLength(text.substr(i));
            if (blank > 0) {
                lines_.Space();
                i += blank;
                continue;
            }
            const size_t start = i;
            while (i < text.size() && BlankLength(text.substr(i)) == 0)
                ++i;
            lines_.Raw(text.substr(start, i - start));
        }
    }

    void Preformatted(std::string_view text)
    {
        while (!text.empty()) {
            const size_t end = text.find('\n');
            std::string_view line = text.substr(0, end);
            if (line.ends_with('\r'))
                line.remove_suffix(1);
            if (!line.empty())
                lines_.Raw(line);
            if (end == text.npos)
                return;
            lines_.HardBreak();
            text.remove_prefix(end + 1);
        }
    }

    static size_t BlankLength(std::string_view text)
    {
        if (text[0] == ' ' || text[0] == '\t' || text[0] == '\n' || text[0] == '\r' || text[0] == '\f')
            return 1;
        return text.starts_with("\xC2\xA0") ? 2 : 0;
    }

    htmlParserCtxtPtr parser_ = nullptr;
    TextLines lines_;
    std::vector<int> counters_;  // one an open list: -1 bullets, else the last number
    int depth_ = 0;
    int hidden_ = 0;
    int preformatted_ = 0;
};

// The end of the tag at the front, its '>' included; npos when it has none.
size_t TagLength(std::string_view html)
{
    char quote = 0;
    for (size_t i = 1; i < html.size(); ++i) {
        if (quote != 0)
            quote = html[i] == quote ? '\0' : quote;
        else if (html[i] == '>')
            return i + 1;
        else if (html[i - 1] == '=' && (html[i] == '"' || html[i] == '\''))
            quote = html[i];
    }
    return html.npos;
}

// Reduces tags of absurd length to their names: the parser compares each attribute with all before it.
std::string WithoutHugeTags(std::string_view html)
{
    constexpr size_t kLongestTag = 8192;
    std::string out;
    out.reserve(html.size());
    while (!html.empty()) {
        const size_t open = std::min(html.find('<'), html.size());
        out += html.substr(0, open);
        html.remove_prefix(open);
        if (html.size() < 2 || std::isalpha(static_cast<unsigned char>(html[1])) == 0) {
            out += html.substr(0, 1);
            html.remove_prefix(std::min<size_t>(1, html.size()));
            continue;
        }
        size_t length = TagLength(html.substr(0, kLongestTag));
        if (length != html.npos) {
            out += html.substr(0, length);
        } else {
            length = std::min(TagLength(html), html.size());
            if (length <= kLongestTag)
                out += html.substr(0, length);  // the document ends inside it
            else
                out.append(html.substr(0, std::min<size_t>(html.find_first_of(" \t\r\n/"), 60))).append(">");
        }
        html.remove_prefix(length);
    }
    return out;
}

struct ParserCloser {
    void operator()(htmlParserCtxtPtr parser) const { htmlFreeParserCtxt(parser); }
};

htmlSAXHandler EventHandlers()
{
    htmlSAXHandler handlers{};
    handlers.startElement = HtmlWalk::Start;
    handlers.endElement = HtmlWalk::End;
    handlers.characters = HtmlWalk::Characters;
    handlers.ignorableWhitespace = HtmlWalk::Characters;
    handlers.cdataBlock = HtmlWalk::Characters;
    return handlers;
}

}  // namespace

std::string TextFromHtml(std::string_view given)
{
    const std::string html = WithoutHugeTags(given);
    HtmlWalk walk;
    htmlSAXHandler handlers = EventHandlers();
    const std::unique_ptr<htmlParserCtxt, ParserCloser> parser(
        htmlCreateMemoryParserCtxt(html.data(), static_cast<int>(html.size())));
    if (html.empty() || !parser)
        return {};
    *parser->sax = handlers;
    parser->userData = &walk;
    htmlCtxtUseOptions(parser.get(), HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET |
                                         HTML_PARSE_IGNORE_ENC);
    xmlSwitchEncoding(parser.get(), XML_CHAR_ENCODING_UTF8);
    walk.StopsIn(parser.get());
    htmlParseDocument(parser.get());
    return walk.Take();
}

std::string HtmlMetaCharset(std::string_view bytes)
{
    constexpr size_t kLookedThrough = 4096;
    std::string head;
    for (const char c : bytes.substr(0, kLookedThrough))
        head += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    for (size_t meta = head.find("<meta"); meta != head.npos; meta = head.find("<meta", meta + 5)) {
        const size_t end = std::min(head.find('>', meta), head.size());
        size_t at = head.find("charset", meta);
        if (at == head.npos || at > end)
            continue;
        at = head.find_first_not_of(" =\"'\t", at + 7);
        if (at >= end)
            continue;
        return head.substr(at, head.find_first_of(" \"';/>\t", at) - at);
    }
    return {};
}

}  // namespace pavex
