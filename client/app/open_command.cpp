// client/app/open_command.cpp: pavex open: shows the note behind a URL, and remembers it in the history.
#include <unistd.h>

#include <iostream>
#include <memory>

#include "client/app/command.h"
#include "client/app/history.h"
#include "client/app/note_finder.h"
#include "client/app/note_target.h"
#include "client/app/note_text.h"
#include "client/app/note_window.h"
#include "client/app/pager.h"
#include "client/app/terminal_text.h"
#include "client/app/window_front_end.h"
#include "client/store/note_link.h"

namespace pavex {

namespace {

struct OpenArguments {
    std::string target;
    bool raw = false;
    bool window = false;
};

struct OpenNote {
    NOTELINK link{};
    Note note{};
    std::unique_ptr<Database> database{};
};

bool FindTarget(const std::string& target, OpenNote* found, std::string* error)
{
    const std::optional<std::string> url = UrlOfTarget(target, error);
    if (!url)
        return false;
    const std::optional<NOTELINK> link = LinkFromUrl(*url);
    if (!link) {
        *error = *url + " is no address of a note (Pavex:///...) and no number of a search result";
        return false;
    }
    found->link = *link;
    found->database = FindNote(*link, &found->note, error);
    if (found->database == nullptr)
        *error = *url + ": " + *error;
    return found->database != nullptr;
}

bool Remember(const OpenNote& opened, std::string* error)
{
    const std::string title = TitleOfNote(opened.note);
    return RememberInHistory(opened.link, title.empty() ? UrlOfNote(opened.link.replica, opened.link.note) : title,
                             error);
}

void Show(const Note& note)
{
    const std::string text = ReadableNote(note, {WantsColor(), TerminalColumns()});
    std::cout.flush();
    if (isatty(STDOUT_FILENO) == 0 || !ShowInPager(text))
        std::cout << text;
}

int OpenHere(const OpenArguments& arguments)
{
    OpenNote opened;
    std::string error;
    if (!FindTarget(arguments.target, &opened, &error))
        return Fail(error);
    const bool isRemembered = Remember(opened, &error);
    if (arguments.raw)
        PrintNoteJson(*opened.database, opened.note, false);
    else
        Show(opened.note);
    return isRemembered ? kExitDone : Fail(error);
}

int OpenInWindow(const OpenArguments& arguments)
{
    OpenNote opened;
    std::string error;
    if (!FindTarget(arguments.target, &opened, &error)) {
        ShowProblemWindow(error);
        return Fail(error);
    }
    std::string whyNoWindow;
    const bool isRemembered = Remember(opened, &error);
    if (!ShowNoteWindow(opened.note, isRemembered ? "" : error, &whyNoWindow))
        return Fail(whyNoWindow);
    return isRemembered ? kExitDone : Fail(error);
}

int RunOpen(const OpenArguments& arguments)
{
    return arguments.window && HasDisplay() ? OpenInWindow(arguments) : OpenHere(arguments);
}

}  // namespace

CommandFunction ConfigureOpen(CLI::App& options)
{
    const auto arguments = std::make_shared<OpenArguments>();
    CLI::Option* const raw = options.add_flag("--raw", arguments->raw, "print the note's items as JSON");
    options.add_flag("--window", arguments->window, "show it in a window, where there is a display")->excludes(raw);
    options.add_option("NOTE", arguments->target, "the note's URL, or its number in the last search")->required();
    return [arguments] { return RunOpen(*arguments); };
}

}  // namespace pavex
