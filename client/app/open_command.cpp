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

void Show(const Note& note)
{
    const std::string text = ReadableNote(note, {WantsColor(), TerminalColumns()});
    std::cout.flush();
    if (isatty(STDOUT_FILENO) == 0 || !ShowInPager(text))
        std::cout << text;
}

int RunOpen(const OpenArguments& arguments)
{
    std::string error;
    const std::optional<std::string> target = UrlOfTarget(arguments.target, &error);
    if (!target)
        return Fail(error);
    const std::string& url = *target;
    const std::optional<NOTELINK> link = LinkFromUrl(url);
    if (!link)
        return Fail(url + " is no address of a note (Pavex:///...) and no number of a search result");
    Note note;
    const std::unique_ptr<Database> database = FindNote(*link, &note, &error);
    if (database == nullptr)
        return Fail(url + ": " + error);
    const std::string title = TitleOfNote(note);
    const bool isRemembered = RememberInHistory(*link, title.empty() ? url : title, &error);
    std::string whyNoWindow;
    if (arguments.raw)
        PrintNoteJson(*database, note, false);
    else if (!arguments.window || !HasDisplay())
        Show(note);
    else if (!ShowNoteWindow(note, &whyNoWindow))
        return Fail(whyNoWindow);
    return isRemembered ? kExitDone : Fail(error);
}

}  // namespace

CommandFunction ConfigureOpen(CLI::App& options)
{
    const auto arguments = std::make_shared<OpenArguments>();
    options.add_flag("--raw", arguments->raw, "print the note's items as JSON");
    options.add_flag("--window", arguments->window, "show it in a window, where there is a display");
    options.add_option("NOTE", arguments->target, "the note's URL, or its number in the last search")->required();
    return [arguments] { return RunOpen(*arguments); };
}

}  // namespace pavex
