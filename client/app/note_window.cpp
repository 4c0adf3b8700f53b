// client/app/note_window.cpp: a note in a window of its own.
#include "client/app/note_window.h"

#include <algorithm>
#include <functional>
#include <memory>

#include "client/app/history.h"
#include "client/app/local_time.h"
#include "client/app/note_finder.h"
#include "client/app/note_labels.h"
#include "client/app/note_text.h"
#include "client/app/program_files.h"
#include "client/app/signals.h"
#include "client/app/terminal_text.h"
#include "client/app/window_front_end.h"
#include "client/store/descriptor.h"
#include "client/store/host.h"
#include "client/store/note_link.h"
#include "client/store/richtext.h"
#include "client/store/timedate.h"
#include "client/store/value_text.h"

namespace pavex {

namespace {

// Stands above the fields, or says nothing to who reads.
bool IsAbove(const Item& item, const std::string& title)
{
    return item.name == "Form" || (IsTitleItem(item.name) && PrintableLine(LinesOfItem(item)) == title);
}

// Times as they are where the user is; days without a time are the same everywhere.
std::string ValueForWindow(const Item& item)
{
    std::string times;
    for (const TIMEDATE& time : ReadTimes(item.type, item.value)) {
        const std::optional<int64_t> seconds = UnixFromTime(time);
        const bool isMoment = seconds && time.Innards[0] != kNoTimeOfDay;
        times += (times.empty() ? "" : ", ") + (isMoment ? LocalTimeText(*seconds) : IsoFromTime(time));
    }
    return times.empty() ? LinesOfItem(item) : times;
}

// Lines stay; nothing that orders or hides others is left in one.
std::string PlainLines(const std::string& text)
{
    std::string lines;
    for (size_t at = 0; at <= text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size());
        lines += (at == 0 ? "" : "\n") + PrintableLine(std::string_view(text).substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

void AddFields(const Note& note, NoteView* view)
{
    std::vector<NoteField> others;
    for (const Item& item : note.items) {
        const std::string value = PlainLines(ValueForWindow(item));
        if (!IsShownItem(item) || value.find_first_not_of(" \n") == value.npos || IsAbove(item, view->title))
            continue;
        const std::optional<std::string> label = LabelOfItem(item.name);
        (label ? view->fields : others).push_back({label.value_or(PrintableLine(item.name)), value});
    }
    view->fields.insert(view->fields.end(), others.begin(), others.end());
}

void AddBody(const Item& item, NoteView* view)
{
    for (const RichTextPiece& piece : ReadRichText(item.value)) {
        switch (piece.kind) {
        case RichTextPiece::Kind::kParagraph:
            view->body.push_back({NotePiece::Kind::kParagraph, PlainLines(piece.text), {}});
            break;
        case RichTextPiece::Kind::kRule:
            view->body.push_back({NotePiece::Kind::kRule, {}, {}});
            break;
        case RichTextPiece::Kind::kLink:
            view->body.push_back(
                {NotePiece::Kind::kLink, PrintableLine(piece.text), UrlOfNote(piece.link.replica, piece.link.note)});
            break;
        }
    }
}

bool Follow(const std::string& url, NoteView* view, std::string* error)
{
    const std::optional<NOTELINK> link = LinkFromUrl(url);
    Note note;
    if (!link) {
        *error = url + " leads to no note";
        return false;
    }
    if (FindNote(*link, &note, error) == nullptr) {
        *error = url + ": " + *error;
        return false;
    }
    *view = ViewOfNote(note);
    (void)RememberInHistory(*link, view->title.empty() ? url : view->title, &view->problem);
    return true;
}

constexpr WindowWords kWords = {"pavex open without --window prints the note",
                                "the display is gone, and the note's window with it"};

// Opens the display and hands it to what is to be shown.
bool Show(const std::function<void(WindowFrontEnd& frontEnd)>& callback, std::string* error)
{
    HoldSignals();
    const Descriptor signals(OpenSignalDescriptor());
    const std::unique_ptr<WindowFrontEnd> frontEnd = LoadWindowFrontEnd(kWords, signals.Get(), error);
    if (frontEnd == nullptr)
        return false;
    const DisplayGuard guard(kWords);
    SetAddInBundle(BundleFolder());
    callback(*frontEnd);
    return true;
}

}  // namespace

NoteView ViewOfNote(const Note& note)
{
    NoteView view;
    view.title = PrintableLine(TitleOfNote(note));
    AddFields(note, &view);
    for (const Item& item : note.items)
        if (IsShownItem(item) && item.type == kTypeRichText)
            AddBody(item, &view);
    return view;
}

bool ShowNoteWindow(const Note& note, const std::string& problem, std::string* error)
{
    return Show(
        [&](WindowFrontEnd& frontEnd) {
            NoteView view = ViewOfNote(note);
            view.problem = PrintableLine(problem);
            frontEnd.ShowNote({view, WindowTextsOfNotes(), Follow});
        },
        error);
}

void ShowProblemWindow(const std::string& problem)
{
    std::string whyNone;  // who sees no window sees the terminal, where the caller says it
    (void)Show(
        [&problem](WindowFrontEnd& frontEnd) {
            frontEnd.MessageBox({.text = PrintableLine(problem), .caption = "Pavex", .icon = BoxIcon::Warning});
        },
        &whyNone);
}

}  // namespace pavex
