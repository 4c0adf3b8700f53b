// client/app/note_text.cpp: notes as people read them.
#include "client/app/note_text.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <sstream>

#include "client/app/note_json.h"
#include "client/store/charset.h"
#include "client/store/note_link.h"
#include "client/store/richtext.h"
#include "client/store/value_text.h"

namespace pavex {

namespace {

constexpr const char* kBold = "\033[1m";
constexpr const char* kPlain = "\033[0m";
constexpr const char* kTitleItems[] = {"Subject", "Topic", "Title", "FullName"};
constexpr size_t kRuleLength = 40;

bool IsShown(const Item& item)
{
    return !item.name.starts_with('$');
}

// Further lines of a value stand below its first one.
std::string FieldText(const Item& item)
{
    std::istringstream lines(Utf8FromScs(TextOfItem(item, ", ")));
    std::string text;
    for (std::string line; std::getline(lines, line);)
        text += (text.empty() ? "" : "\n    ") + OneLine(line);
    return text;
}

std::string TextOfPiece(const RichTextPiece& piece)
{
    switch (piece.kind) {
    case RichTextPiece::Kind::kParagraph:
        return OneLine(piece.text);
    case RichTextPiece::Kind::kRule:
        return std::string(kRuleLength, '-');
    case RichTextPiece::Kind::kLink:
        return OneLine(piece.text) + " <" + UrlOfNote(piece.link.replica, piece.link.note) + ">";
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
    for (const char* name : kTitleItems)
        if (std::string title = FirstText(note, name); !title.empty())
            return title;
    return {};
}

bool WantsColor()
{
    const char* const refusal = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) != 0 && (refusal == nullptr || *refusal == '\0');
}

std::string OneLine(std::string text)
{
    const auto at = [&text](size_t i) { return static_cast<unsigned char>(text[i]); };
    for (size_t i = 0; i < text.size(); ++i) {
        const bool isLongControl = at(i) == 0xC2 && i + 1 < text.size() && at(i + 1) >= 0x80 && at(i + 1) < 0xA0;
        if (isLongControl)
            text.replace(i, 2, " ");
        else if (at(i) < 0x20 || at(i) == 0x7F)
            text[i] = ' ';
    }
    return text;
}

std::string ReadableNote(const Note& note, bool isBold)
{
    std::string text;
    for (const Item& item : note.items) {
        const std::string value = IsShown(item) ? FieldText(item) : std::string();
        if (!value.empty())
            text += (isBold ? kBold + item.name + ":" + kPlain : item.name + ":") + " " + value + "\n";
    }
    for (const Item& item : note.items) {
        if (!IsShown(item) || item.type != kTypeRichText)
            continue;
        text += "\n";
        for (const RichTextPiece& piece : ReadRichText(item.value))
            text += TextOfPiece(piece) + "\n";
    }
    return text;
}

void PrintNoteJson(const Database& database, const Note& note, bool isOneLine)
{
    nlohmann::ordered_json json = JsonFromNote(note);
    json["noteid"] = note.id;
    json["url"] = UrlOfNote(database.ReplicaId(), note.unid);
    std::cout << json.dump(isOneLine ? -1 : 2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

}  // namespace pavex
