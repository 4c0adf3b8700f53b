// client/app/note_text.cpp: notes as people read them.
#include "client/app/note_text.h"

#include <algorithm>
#include <iostream>
#include <sstream>

#include "client/app/json_output.h"
#include "client/app/note_json.h"
#include "client/app/terminal_text.h"
#include "client/store/charset.h"
#include "client/store/note_link.h"
#include "client/store/richtext.h"
#include "client/store/value_text.h"

namespace pavex {

namespace {

constexpr const char* kBold = "\033[1m";
constexpr const char* kPlain = "\033[0m";
constexpr std::string_view kTitleItems[] = {"Subject", "Topic", "Title", "FullName"};
constexpr size_t kRuleLength = 40;
constexpr size_t kIndent = 4;

// Further lines of a value stand below its first one.
std::string TextOfField(const Item& item, const ReadingStyle& style)
{
    const std::string name = PrintableLine(item.name) + ":";
    std::istringstream lines(LinesOfItem(item));
    std::string text;
    for (std::string line; std::getline(lines, line);)
        if (!text.empty() || !line.empty())
            text += text.empty() ? WrapLine((style.isBold ? kBold + name + kPlain : name) + " " + PrintableLine(line),
                                            style.columns, kIndent) +
                                       "\n"
                                 : IndentLine(PrintableLine(line), style.columns, kIndent) + "\n";
    return text;
}

std::string TextOfPiece(const RichTextPiece& piece, size_t columns)
{
    switch (piece.kind) {
    case RichTextPiece::Kind::kParagraph:
        return WrapLine(PrintableLine(piece.text), columns, 0);
    case RichTextPiece::Kind::kRule:
        return std::string(columns == 0 ? kRuleLength : std::min(columns, kRuleLength), '-');
    case RichTextPiece::Kind::kLink:
        return WrapLine(PrintableLine(piece.text) + " <" + UrlOfNote(piece.link.replica, piece.link.note) + ">",
                        columns, 0);
    }
    return {};
}

}  // namespace

std::string FirstText(const Note& note, std::string_view name)
{
    const Item* const item = note.Find(name);
    const auto values = item != nullptr ? TextValues(*item) : std::nullopt;
    return values && !values->empty() ? values->front() : std::string();
}

std::string TitleOfNote(const Note& note)
{
    for (const std::string_view name : kTitleItems)
        if (std::string title = FirstText(note, name); !title.empty())
            return title;
    return {};
}

std::string LinesOfItem(const Item& item)
{
    std::string text = Utf8FromScs(TextOfItem(item, ", "));
    std::ranges::replace(text, '\0', '\n');
    return text;
}

bool IsTitleItem(std::string_view name)
{
    return std::ranges::find(kTitleItems, name) != std::end(kTitleItems);
}

bool IsShownItem(const Item& item)
{
    return !item.name.starts_with('$');
}

std::string ReadableNote(const Note& note, const ReadingStyle& style)
{
    std::string text;
    for (const Item& item : note.items)
        if (IsShownItem(item))
            text += TextOfField(item, style);
    for (const Item& item : note.items) {
        if (!IsShownItem(item) || item.type != kTypeRichText)
            continue;
        text += "\n";
        for (const RichTextPiece& piece : ReadRichText(item.value))
            text += TextOfPiece(piece, style.columns) + "\n";
    }
    return text;
}

void PrintNoteJson(const Database& database, const Note& note, bool isOneLine)
{
    nlohmann::ordered_json json = JsonFromNote(note);
    json["noteid"] = note.id;
    json["url"] = UrlOfNote(database.ReplicaId(), note.unid);
    std::cout << TextOfJson(json, isOneLine ? -1 : 2) << '\n';
}

}  // namespace pavex
