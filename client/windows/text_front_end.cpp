// client/windows/text_front_end.cpp: dialogs driven by a script of actions or by commands from a terminal.
#include "client/windows/text_front_end.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "client/store/charset.h"
#include "client/store/printable_text.h"
#include "client/windows/chosen_path.h"
#include "client/windows/dialog.h"
#include "client/windows/dialog_text.h"

namespace pavex {

namespace {

const char* IconName(BoxIcon icon)
{
    switch (icon) {
    case BoxIcon::None:
        return "Note";
    case BoxIcon::Question:
        return "Question";
    case BoxIcon::Warning:
        return "Warning";
    }
    return "";
}

std::ostream& Nowhere()
{
    static std::ostream nowhere(nullptr);
    return nowhere;
}

bool IsYes(const std::string& answer)
{
    return answer == "y" || answer == "Y" || answer == "yes" || answer == "ok" || answer == "OK";
}

bool HasEntry(const Control& list, const std::string& scs)
{
    return std::find(list.entries.begin(), list.entries.end(), scs) != list.entries.end();
}

}  // namespace

TextFrontEnd::TextFrontEnd(TextFrontEndOptions options) : options_(std::move(options)), reader_(options_.input) {}

std::ostream& TextFrontEnd::Messages()
{
    return options_.messages == nullptr ? Nowhere() : *options_.messages;
}

void TextFrontEnd::Run(Dialog& dialog)
{
    error_.clear();
    if (RunScript(dialog) && options_.interactive)
        RunSession(dialog);
    std::string refusal;
    if (!dialog.Ended() && !dialog.Press(dialog.CancelButton(), &refusal) && error_.empty())
        error_ = refusal;
    result_ = dialog.Result();
}

bool TextFrontEnd::RunScript(Dialog& dialog)
{
    for (const TextAction& action : options_.script) {
        if (!Perform(dialog, action, &error_))
            return false;
    }
    return true;
}

void TextFrontEnd::RunSession(Dialog& dialog)
{
    Messages() << DialogAsText(dialog) << "help lists the commands.\n> " << std::flush;
    while (!dialog.Ended()) {
        std::string line;
        switch (reader_.Read(dialog.MillisecondsToNextTimer(SteadyMilliseconds()), &line)) {
        case InputLineReader::Outcome::Line:
            RunCommand(dialog, line);
            if (!dialog.Ended())
                Messages() << "> " << std::flush;
            break;
        case InputLineReader::Outcome::TooLong:
            Messages() << "a command has at most " << InputLineReader::kMostLineBytes
                       << " bytes; this one is passed over\n> " << std::flush;
            break;
        case InputLineReader::Outcome::TimedOut:
            break;
        case InputLineReader::Outcome::Ended:
            return;
        }
        dialog.SendDueTimers(SteadyMilliseconds());
    }
}

// A command that fails is reported and the session goes on: its error is not the session's.
void TextFrontEnd::RunCommand(Dialog& dialog, const std::string& line)
{
    if (line.find_first_not_of(" \t") == std::string::npos)
        return;
    TextAction action;
    std::string error;
    if (!ParseAction(dialog, line, &action, &error) || !Perform(dialog, action, &error))
        Messages() << PrintableLine(error) << '\n';
}

bool TextFrontEnd::Perform(Dialog& dialog, const TextAction& action, std::string* error)
{
    std::ostream& out = options_.out == nullptr ? Nowhere() : *options_.out;
    switch (action.kind) {
    case ActionKind::SetCheck: {
        const auto isAsAsked = [&] {
            const Control* const box = std::as_const(dialog).Find(action.control);
            return box != nullptr && box->kind == ControlKind::Check && (box->checked == 1) == action.on;
        };
        if (isAsAsked())
            return true;
        if (!dialog.Toggle(action.control, error))
            return false;
        // The dialog may take it back, when the user declines what it asks.
        if (!action.insist || isAsAsked())
            return true;
        *error = "control " + std::to_string(action.control) + " was not changed: the question was declined";
        return false;
    }
    case ActionKind::TypeText:
        return dialog.Type(action.control, action.text, error);
    case ActionKind::Select:
        return dialog.Select(action.control, action.index, error);
    case ActionKind::Press:
        return dialog.Press(action.control, error);
    case ActionKind::AddFile:
        return AddFile(dialog, action, error);
    case ActionKind::RemoveFile:
        return RemoveFile(dialog, action, error);
    case ActionKind::Tick:
        dialog.SendAllTimers();
        return true;
    case ActionKind::ShowText:
        out << DialogAsText(dialog) << std::flush;
        return true;
    case ActionKind::ShowJson:
        out << DialogAsJson(dialog) << '\n' << std::flush;
        return true;
    case ActionKind::Help:
        out << ActionHelp() << std::flush;
        return true;
    }
    return false;
}

bool TextFrontEnd::AddFile(Dialog& dialog, const TextAction& action, std::string* error)
{
    const std::string path = ChosenPath(action.text);
    const size_t boxesBefore = boxes_.size();
    chosenFile_ = path;
    const bool pressed = dialog.Press(action.control, error);
    chosenFile_.reset();
    if (!pressed)
        return false;
    const Control* list = std::as_const(dialog).Find(action.list);
    if (list != nullptr && HasEntry(*list, ScsFromUtf8(path)))
        return true;
    *error = path + " was not added";
    if (boxes_.size() > boxesBefore)
        *error += ": " + boxes_.back().box.text;
    return false;
}

bool TextFrontEnd::RemoveFile(Dialog& dialog, const TextAction& action, std::string* error)
{
    const Control* list = std::as_const(dialog).Find(action.list);
    if (list == nullptr || list->kind != ControlKind::List) {
        *error = "the dialog has no list " + std::to_string(action.list);
        return false;
    }
    for (const std::string& name : {action.text, ChosenPath(action.text)}) {
        const auto found = std::find(list->entries.begin(), list->entries.end(), ScsFromUtf8(name));
        if (found != list->entries.end())
            return dialog.Select(action.list, found - list->entries.begin(), error) &&
                   dialog.Press(action.control, error);
    }
    *error = action.text + " is not in the list";
    return false;
}

std::optional<std::string> TextFrontEnd::Ask(std::string_view prompt)
{
    std::string line;
    Messages() << prompt << std::flush;
    if (reader_.Read(std::nullopt, &line) != InputLineReader::Outcome::Line)
        return std::nullopt;
    return line;
}

int TextFrontEnd::MessageBox(const MessageBoxRequest& box)
{
    Messages() << IconName(box.icon) << ": " << PrintableLine(box.caption) << '\n'
               << PrintableLines(box.text) << '\n'
               << std::flush;
    int answer = kBoxAnswerOk;
    if (box.canCancel) {
        const bool yes = options_.answers == BoxAnswers::Yes ||
                         (options_.answers == BoxAnswers::Ask && IsYes(Ask("OK? [y/n] ").value_or("n")));
        answer = yes ? kBoxAnswerOk : kBoxAnswerCancel;
        if (options_.answers != BoxAnswers::Ask)
            Messages() << (yes ? "-> OK\n" : "-> Cancel\n") << std::flush;
    }
    boxes_.push_back({box, answer});
    return answer;
}

bool TextFrontEnd::ChooseFile(std::string* path)
{
    if (chosenFile_) {
        *path = *std::exchange(chosenFile_, std::nullopt);
        return true;
    }
    if (!options_.interactive)
        return false;  // a script names its files
    const std::optional<std::string> typed = Ask("File (nothing: cancel): ");
    if (!typed || typed->empty())
        return false;
    *path = ChosenPath(*typed);
    return true;
}

}  // namespace pavex
