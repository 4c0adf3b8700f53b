// client/windows/qt/note_page.cpp: a note as a page of text with links.
#include "client/windows/qt/note_page.h"

namespace pavex {

namespace {

QString Escaped(const std::string& text)
{
    return QString::fromStdString(text).toHtmlEscaped();
}

// Lines stay lines, and blanks stay as many as they are.
QString EscapedLines(const std::string& text)
{
    return Escaped(text).replace('\n', "<br>").replace("  ", "&nbsp; ");
}

QString Fields(const std::vector<NoteField>& fields)
{
    QString rows;
    for (const NoteField& field : fields)
        rows +=
            "<tr><td class=\"label\">" + Escaped(field.label) + "</td><td>" + EscapedLines(field.value) + "</td></tr>";
    return rows.isEmpty() ? rows : "<table cellspacing=\"0\" cellpadding=\"2\">" + rows + "</table><hr>";
}

QString Piece(const NotePiece& piece, size_t place)
{
    switch (piece.kind) {
    case NotePiece::Kind::kParagraph:
        return piece.text.empty() ? QString("<p>&nbsp;</p>") : "<p>" + EscapedLines(piece.text) + "</p>";
    case NotePiece::Kind::kRule:
        return "<hr>";
    case NotePiece::Kind::kLink:
        return QString("<p><a href=\"note:%1\">").arg(place) + Escaped(piece.text.empty() ? piece.url : piece.text) +
               "</a></p>";
    }
    return {};
}

}  // namespace

QString PageOfNote(const NoteView& note)
{
    QString page = "<h2>" + Escaped(note.title) + "</h2>" + Fields(note.fields);
    for (size_t place = 0; place < note.body.size(); ++place)
        page += Piece(note.body[place], place);
    return page;
}

}  // namespace pavex
