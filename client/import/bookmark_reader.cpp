// client/import/bookmark_reader.cpp: links of a list of lists, from the events of libxml2's parser.
#include "client/import/bookmark_reader.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include <libxml/HTMLparser.h>
#include <libxml/parserInternals.h>

#include "client/import/bookmark_note.h"
#include "client/import/charset_text.h"
#include "client/import/html_text.h"
#include "client/import/text_file.h"
#include "client/import/words.h"

namespace pavex {
namespace {

// The parser takes the whole file; a list of more than this was not made by hand.
constexpr uint64_t kLargestFile = uint64_t{64} * 1024 * 1024;

struct ParserCloser {
    void operator()(htmlParserCtxtPtr parser) const { htmlFreeParserCtxt(parser); }
};

// White space runs together into one space, at the ends into none.
std::string Tidy(std::string_view text)
{
    std::string tidy;
    for (const char c : text) {
        const bool blank = static_cast<unsigned char>(c) <= ' ';
        if (!blank)
            tidy += c;
        else if (!tidy.empty() && tidy.back() != ' ')
            tidy += ' ';
    }
    if (tidy.ends_with(' '))
        tidy.pop_back();
    return tidy;
}

std::string Attribute(const xmlChar** attributes, const char* name)
{
    for (; attributes != nullptr && attributes[0] != nullptr; attributes += 2) {
        if (SameWord(reinterpret_cast<const char*>(attributes[0]), name))
            return attributes[1] == nullptr ? std::string() : reinterpret_cast<const char*>(attributes[1]);
    }
    return {};
}

// Seconds since 1970; some programs count thousandths or millionths.
int64_t TimeAttribute(const xmlChar** attributes, const char* name)
{
    constexpr int64_t kFarFuture = 100000000000;  // seconds
    const std::string text = Attribute(attributes, name);
    int64_t time = 0;
    std::from_chars(text.data(), text.data() + text.size(), time);
    while (time > kFarFuture)
        time /= 1000;
    return std::max<int64_t>(time, 0);
}

class BookmarkWalk {
public:
    BookmarkWalk(const SourceFile& file, EntryHandler& handler) : file_(file), handler_(handler) {}

    bool Read(std::string_view html)
    {
        htmlSAXHandler handlers{};
        handlers.startElement = Start;
        handlers.endElement = End;
        handlers.characters = Characters;
        handlers.ignorableWhitespace = Characters;
        const std::unique_ptr<htmlParserCtxt, ParserCloser> parser(
            htmlCreateMemoryParserCtxt(html.data(), static_cast<int>(html.size())));
        if (html.empty() || !parser)
            return true;
        parser_ = parser.get();
        *parser->sax = handlers;
        parser->userData = this;
        htmlCtxtUseOptions(parser.get(), HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                                             HTML_PARSE_NONET | HTML_PARSE_IGNORE_ENC);
        xmlSwitchEncoding(parser.get(), XML_CHAR_ENCODING_UTF8);
        htmlParseDocument(parser.get());
        EndBookmark();
        return HandOutKept();
    }

private:
    enum class Taking { kNothing, kTitle, kFolder, kDescription };

    static void Start(void* self, const xmlChar* name, const xmlChar** attributes)
    {
        static_cast<BookmarkWalk*>(self)->StartElement(reinterpret_cast<const char*>(name), attributes);
    }
    static void End(void* self, const xmlChar* name)
    {
        static_cast<BookmarkWalk*>(self)->EndElement(reinterpret_cast<const char*>(name));
    }
    static void Characters(void* self, const xmlChar* text, int count)
    {
        auto* const walk = static_cast<BookmarkWalk*>(self);
        if (walk->taking_ != Taking::kNothing)
            walk->text_.append(reinterpret_cast<const char*>(text), static_cast<size_t>(count));
    }

    void StartElement(std::string_view name, const xmlChar** attributes)
    {
        if (name == "a" && !Tidy(Attribute(attributes, "href")).empty()) {
            EndBookmark();
            BeginBookmark(attributes);
        } else if (name == "h3") {
            EndBookmark();
            Take(Taking::kFolder);
        } else if (name == "dl") {
            EndBookmark();
            OpenList(std::exchange(folder_, {}));
        } else if (name == "dd" && begun_) {
            Take(Taking::kDescription);
        } else if (name == "dt" || name == "li") {
            EndBookmark();
        }
    }

    void EndElement(std::string_view name)
    {
        if (name == "a" && taking_ == Taking::kTitle) {
            bookmark_.title = Tidy(text_);
            Take(Taking::kNothing);
        } else if (name == "h3" && taking_ == Taking::kFolder) {
            folder_ = Tidy(text_);
            Take(Taking::kNothing);
        } else if (name == "dl") {
            EndBookmark();
            CloseList();
        }
    }

    void OpenList(std::string name)
    {
        lists_.push_back(folders_.size());
        if (!name.empty() && folders_.size() < kMostCategories)
            folders_.push_back(std::move(name));
    }

    void CloseList()
    {
        if (lists_.empty())
            return;
        folders_.resize(lists_.back());
        lists_.pop_back();
    }

    void Take(Taking what)
    {
        taking_ = what;
        text_.clear();
    }

    void BeginBookmark(const xmlChar** attributes)
    {
        bookmark_ = {};
        bookmark_.address = Tidy(Attribute(attributes, "href"));
        bookmark_.added = TimeAttribute(attributes, "add_date");
        if (bookmark_.added == 0)
            bookmark_.added = TimeAttribute(attributes, "time_added");
        bookmark_.changed = std::max(TimeAttribute(attributes, "last_modified"), bookmark_.added);
        bookmark_.categories = folders_;
        AddTags(Attribute(attributes, "tags"));
        line_ = parser_->input != nullptr ? parser_->input->line : 0;
        begun_ = true;
        Take(Taking::kTitle);
    }

    void AddTags(std::string_view tags)
    {
        while (!tags.empty()) {
            const std::string_view tag = tags.substr(0, tags.find(','));
            tags.remove_prefix(std::min(tag.size() + 1, tags.size()));
            if (std::string tidy = Tidy(tag); !tidy.empty())
                bookmark_.categories.push_back(std::move(tidy));
        }
    }

    void EndBookmark()
    {
        if (begun_) {
            if (taking_ == Taking::kTitle)
                bookmark_.title = Tidy(text_);
            if (taking_ == Taking::kDescription)
                bookmark_.description = TrimmedText(CleanText(text_));
            KeepBookmark();
        }
        begun_ = false;
        Take(Taking::kNothing);
    }

    // An address that stands in several folders is one note with all that they say of it.
    void KeepBookmark()
    {
        const auto [at, fresh] = byAddress_.try_emplace(bookmark_.address, kept_.size());
        if (fresh) {
            kept_.push_back({std::move(bookmark_), line_});
            return;
        }
        Bookmark& known = kept_[at->second].bookmark;
        for (std::string& category : bookmark_.categories) {
            if (std::find(known.categories.begin(), known.categories.end(), category) == known.categories.end())
                known.categories.push_back(std::move(category));
        }
        AddText(bookmark_.title != known.title ? bookmark_.title : "", &known.description);
        AddText(bookmark_.description, &known.description);
        known.changed = std::max(known.changed, bookmark_.changed);
    }

    static void AddText(const std::string& text, std::string* to)
    {
        if (!text.empty() && to->find(text) == to->npos)
            *to += (to->empty() ? "" : "\n") + text;
    }

    bool HandOutKept()
    {
        for (const Kept& kept : kept_) {
            const std::string where = file_.path + ":line " + std::to_string(kept.line);
            SourceEntryFound entry;
            std::string reason;
            const bool made = MakeBookmarkEntry(kept.bookmark, &entry, &reason);
            entry.where = where;
            if (!(made ? handler_.Found(std::move(entry)) : handler_.Rejected(where, reason)))
                return false;
        }
        return true;
    }

    struct Kept {
        Bookmark bookmark;
        int line;
    };

    const SourceFile& file_;
    EntryHandler& handler_;
    htmlParserCtxtPtr parser_ = nullptr;
    std::vector<size_t> lists_;         // for each open list the number of folders around it
    std::vector<std::string> folders_;  // names of the open lists that have one, the outermost first
    std::string folder_;                // name of the list that comes next
    Bookmark bookmark_;
    int line_ = 0;        // of the bookmark
    bool begun_ = false;  // and not handed out
    Taking taking_ = Taking::kNothing;
    std::string text_;
    std::vector<Kept> kept_;  // in the order of the file
    std::map<std::string, size_t> byAddress_;
};

}  // namespace

bool LooksLikeBookmarks(const SourceFile& file)
{
    const std::string head = UpperWord(TextOfHead(file.head));
    if (head.find("<!DOCTYPE NETSCAPE-BOOKMARK-FILE") != head.npos)
        return true;
    return file.place != SourceFile::Place::kMaildir && head.find("<DL><P>") != head.npos &&
           head.find("<DT><A HREF=") != head.npos;
}

bool ReadBookmarks(const SourceFile& file, const ImportOptions&, EntryHandler& handler)
{
    TextFile text;
    std::string reason;
    std::string bytes;
    if (!OpenTextFile(file.path, &text, &reason) || !ReadTextFile(text, kLargestFile, &bytes, &reason)) {
        handler.Unreadable(file.path, reason);
        return true;
    }
    if (text.end - text.start > kLargestFile)
        return handler.Rejected(file.path, "has more than 64 MB of bookmarks");
    std::string html = Utf8FromBytes(bytes, HtmlMetaCharset(bytes));
    std::replace(html.begin(), html.end(), '\0', ' ');
    return BookmarkWalk(file, handler).Read(html) && handler.Progress(file.size);
}

}  // namespace pavex
