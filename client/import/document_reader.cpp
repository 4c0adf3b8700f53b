// client/import/document_reader.cpp: the title of a text is its first heading, its first line, or its file's name.
#include "client/import/document_reader.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <memory>
#include <utility>

#include "client/import/charset_text.h"
#include "client/import/digest.h"
#include "client/import/text_file.h"
#include "client/import/words.h"
#include "client/store/richtext.h"
#include "client/store/timedate.h"

namespace pavex {
namespace {

constexpr uint64_t kMostText = uint64_t{16} * 1024 * 1024;  // bytes of a text that are taken
constexpr size_t kLongestTitle = 200;                       // bytes

constexpr std::string_view kTextSuffixes[] = {".txt", ".text", ".md", ".markdown", ".rst", ".org", ".asc", ".adoc"};
constexpr std::string_view kMarkdownSuffixes[] = {".md", ".markdown"};

constexpr std::string_view kDashes = "---";

constexpr FormDefinition kDocumentForm = {"Document", "Title"};

template <size_t Count> bool IsNamed(const std::string& path, const std::string_view (&suffixes)[Count])
{
    return std::any_of(std::begin(suffixes), std::end(suffixes),
                       [&](std::string_view suffix) { return EndsWithWord(path, suffix); });
}

bool IsText(std::string_view head)
{
    return std::none_of(head.begin(), head.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 && c != '\t' && c != '\n' && c != '\r' && c != '\f' && c != '\x1B';
    });
}

// "# Title", "= Title"; empty for any other line.
std::string_view HeadingOf(std::string_view line)
{
    const size_t marks = line.find_first_not_of(line.substr(0, 1));
    const bool heading = (line.starts_with('#') || line.starts_with('=')) && marks != line.npos && line[marks] == ' ';
    if (!heading)
        return {};
    std::string_view title = TrimmedText(line.substr(marks));
    while (title.ends_with('#'))
        title.remove_suffix(1);
    return TrimmedText(title);
}

// "title: The title" of the settings that Markdown files begin with, between lines of dashes.
std::string_view TitleSetting(std::string_view line)
{
    constexpr std::string_view kName = "title:";
    if (!BeginsWithWord(line, kName))
        return {};
    std::string_view title = TrimmedText(line.substr(kName.size()));
    if (title.size() > 1 && (title.front() == '"' || title.front() == '\'') && title.back() == title.front())
        title = title.substr(1, title.size() - 2);
    return title;
}

// The next line without its blanks; *text goes on behind it.
std::string_view TakeLine(std::string_view* text)
{
    const size_t end = std::min(text->find('\n'), text->size());
    const std::string_view line = text->substr(0, end);
    text->remove_prefix(std::min(end + 1, text->size()));
    return TrimmedText(line);
}

// Takes the settings off *text, and gives the title among them.  Dashes that nothing ends begin no settings.
std::string_view TakeSettings(std::string_view* text)
{
    std::string_view rest = *text;
    if (TakeLine(&rest) != kDashes)
        return {};
    std::string_view title;
    while (!rest.empty()) {
        const std::string_view line = TakeLine(&rest);
        if (line == kDashes) {
            *text = rest;
            return title;
        }
        if (title.empty())
            title = TitleSetting(line);
    }
    return {};
}

// A comment of code is no heading.
std::string_view TitleOfMarkdown(std::string_view text)
{
    if (const std::string_view title = TakeSettings(&text); !title.empty())
        return title;
    std::string_view first;
    for (bool code = false; !text.empty();) {
        const std::string_view line = TakeLine(&text);
        if (line.starts_with("```") || line.starts_with("~~~"))
            code = !code;
        else if (const std::string_view heading = HeadingOf(line); !code && !heading.empty())
            return heading;
        else if (first.empty() && line != kDashes)
            first = line;
    }
    return first;
}

std::string_view TitleOfText(std::string_view text)
{
    std::string_view line;
    while (line.empty() && !text.empty())
        line = TakeLine(&text);
    const std::string_view heading = HeadingOf(line);
    return heading.empty() ? line : heading;
}

std::string TitleOf(std::string_view text, const std::string& path)
{
    const std::string name = std::filesystem::path(path).filename().string();
    const std::string_view title = IsNamed(path, kMarkdownSuffixes) ? TitleOfMarkdown(text) : TitleOfText(text);
    return std::string(Utf8Prefix(title.empty() ? std::string_view(name) : title, kLongestTitle));
}

Note DocumentNote(const SourceFile& file, std::string_view text)
{
    Note note;
    RichTextBuilder body;
    body.AddLines(text);
    note.items = {TextItem("Form", kDocumentForm.name), TextItem("Title", TitleOf(text, file.path)),
                  TextItem("FileName", std::filesystem::path(file.path).filename().string()),
                  RichTextItem("Body", body.Records())};
    note.modified = TimeFromUnix(file.modified);
    return note;
}

}  // namespace

bool LooksLikeDocument(const SourceFile& file)
{
    if (file.place == SourceFile::Place::kMaildir || file.size == 0)
        return false;
    // What is named as a calendar and is none, say, was damaged: a document would hide that.
    const bool named = file.place == SourceFile::Place::kNamed && !IsNamedAsSource(file.path);
    return (named || IsNamed(file.path, kTextSuffixes)) && IsText(TextOfHead(file.head));
}

bool ReadDocument(const SourceFile& file, const ImportOptions&, EntryHandler& handler)
{
    TextFile text;
    std::string reason;
    std::string bytes;
    if (!OpenTextFile(file.path, &text, &reason) || !ReadTextFile(text, kMostText, &bytes, &reason)) {
        handler.Unreadable(file.path, reason);
        return true;
    }
    Note note = DocumentNote(file, CleanText(Utf8FromBytes(bytes, {})));
    SourceEntryFound entry;
    entry.kind = EntryKind::kDocument;
    entry.form = &kDocumentForm;
    entry.identity = "document:" + DigestOf(file.path);
    entry.digest = DigestOf(note);
    entry.revision = Revision{};
    entry.where = file.path;
    if (text.end - text.start > kMostText)
        entry.notice = "only the first 16 MB of its text were taken";
    entry.make = [made = std::make_shared<Note>(std::move(note))](Note* target, std::string*) {
        *target = std::move(*made);
        return true;
    };
    return handler.Found(std::move(entry)) && handler.Progress(file.size);
}

}  // namespace pavex
