// client/windows/note_view.h: a note as its window shows it.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace pavex {

// Texts are UTF-8 and the note's own: plain, whatever signs they hold.
struct NoteField {
    std::string label;
    std::string value;  // may have several lines
};

struct NotePiece {
    enum class Kind { kParagraph, kRule, kLink } kind;
    std::string text;
    std::string url;  // of a link: where it leads
};

struct NoteView {
    std::string title;
    std::vector<NoteField> fields;
    std::vector<NotePiece> body;
    std::string problem{};  // a line for the user below the note; empty: none
};

// The window's own words, in the user's language.
struct NoteWindowTexts {
    std::string untitled;
    std::string back;
    std::string copy;
    std::string close;
};

struct NoteWindowContent {
    NoteView note;
    NoteWindowTexts texts;
    // Opens the note that a link leads to.  False, with *error, a line for the user, when it cannot be shown.
    std::function<bool(const std::string& url, NoteView* note, std::string* error)> follow;
};

}  // namespace pavex
