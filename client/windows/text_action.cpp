// client/windows/text_action.cpp: the things a user can do in a dialog, as command lines.
#include "client/windows/text_action.h"

#include <algorithm>
#include <charconv>

#include "client/windows/dialog.h"

namespace pavex {

namespace {

// The first word of a text, which is left with the rest, without the blanks between.
std::string_view TakeWord(std::string_view* text)
{
    constexpr const char* kBlanks = " \t";
    text->remove_prefix(std::min(text->find_first_not_of(kBlanks), text->size()));
    const std::string_view word = text->substr(0, text->find_first_of(kBlanks));
    text->remove_prefix(word.size());
    text->remove_prefix(std::min(text->find_first_not_of(kBlanks), text->size()));
    return word;
}

// A control of a kind by number or name.
const Control* FindOperand(const Dialog& dialog, std::string_view word, ControlKind kind, std::string* error)
{
    const Control* control = dialog.FindNamed(word);
    if (control == nullptr || control->kind != kind) {
        *error = "no " + std::string(KindName(kind)) + " \"" + std::string(word) + "\" in this dialog";
        return nullptr;
    }
    return control;
}

const Control* OnlyList(const Dialog& dialog, std::string* error)
{
    for (const Control& control : dialog.Controls()) {
        if (control.kind == ControlKind::List)
            return &control;
    }
    *error = "this dialog has no list";
    return nullptr;
}

bool ParseCheck(const Dialog& dialog, std::string_view rest, TextAction* action, std::string* error)
{
    const Control* control = FindOperand(dialog, TakeWord(&rest), ControlKind::Check, error);
    if (control == nullptr)
        return false;
    if (rest != "on" && rest != "off") {
        *error = "check CONTROL on|off";
        return false;
    }
    *action = SetCheckAction(control->id, rest == "on");
    return true;
}

bool ParseType(const Dialog& dialog, std::string_view rest, TextAction* action, std::string* error)
{
    const Control* control = FindOperand(dialog, TakeWord(&rest), ControlKind::Edit, error);
    if (control == nullptr)
        return false;
    *action = TypeTextAction(control->id, rest);
    return true;
}

bool ParseSelect(const Dialog& dialog, std::string_view rest, TextAction* action, std::string* error)
{
    const Control* list = OnlyList(dialog, error);
    if (list == nullptr)
        return false;
    long index = -1;
    const auto read = std::from_chars(rest.data(), rest.data() + rest.size(), index);
    if (read.ec != std::errc() || read.ptr != rest.data() + rest.size()) {
        *error = "select INDEX, counted from 0";
        return false;
    }
    *action = SelectAction(list->id, index);
    return true;
}

bool ParsePress(const Dialog& dialog, std::string_view rest, TextAction* action, std::string* error)
{
    const Control* control = FindOperand(dialog, rest, ControlKind::Button, error);
    if (control == nullptr)
        return false;
    *action = PressAction(control->id);
    return true;
}

// "add" and "remove" press the buttons of these names.
bool ParseFile(const Dialog& dialog, std::string_view rest, const char* buttonName, TextAction* action,
               std::string* error)
{
    const Control* button = FindOperand(dialog, buttonName, ControlKind::Button, error);
    const Control* list = button == nullptr ? nullptr : OnlyList(dialog, error);
    if (list == nullptr)
        return false;
    if (rest.empty()) {
        *error = std::string(buttonName) + " FILE";
        return false;
    }
    *action = AddFileAction(button->id, list->id, rest);
    return true;
}

bool ParseAdd(const Dialog& dialog, std::string_view rest, TextAction* action, std::string* error)
{
    return ParseFile(dialog, rest, "add", action, error);
}

bool ParseRemove(const Dialog& dialog, std::string_view rest, TextAction* action, std::string* error)
{
    if (!ParseFile(dialog, rest, "remove", action, error))
        return false;
    action->kind = ActionKind::RemoveFile;
    return true;
}

bool ParseTick(const Dialog& /*dialog*/, std::string_view /*rest*/, TextAction* action, std::string* /*error*/)
{
    *action = TickAction();
    return true;
}

bool ParseShow(const Dialog& /*dialog*/, std::string_view rest, TextAction* action, std::string* error)
{
    if (!rest.empty() && rest != "json") {
        *error = "show [json]";
        return false;
    }
    *action = rest.empty() ? ShowTextAction() : ShowJsonAction();
    return true;
}

bool ParseHelp(const Dialog& /*dialog*/, std::string_view /*rest*/, TextAction* action, std::string* /*error*/)
{
    *action = TextAction{};
    action->kind = ActionKind::Help;
    return true;
}

struct CommandRow {
    const char* name;
    const char* usage;
    const char* summary;
    bool (*parse)(const Dialog& dialog, std::string_view rest, TextAction* action, std::string* error);
};
constexpr CommandRow kCommands[] = {
    {"check", "check CONTROL on|off", "check or uncheck a box", ParseCheck},
    {"type", "type CONTROL TEXT", "replace the text of a field", ParseType},
    {"select", "select INDEX", "select an entry of the list, counted from 0", ParseSelect},
    {"press", "press BUTTON", "press a button", ParsePress},
    {"add", "add FILE", "add a file to the list", ParseAdd},
    {"remove", "remove FILE", "remove a file from the list", ParseRemove},
    {"tick", "tick", "let the dialog bring its status up to date", ParseTick},
    {"show", "show [json]", "print every control", ParseShow},
    {"help", "help", "print this; a control is named by its number or its name, as shown", ParseHelp},
};

constexpr size_t kUsageWidth = 24;

}  // namespace

TextAction SetCheckAction(int control, bool on, bool insist)
{
    return {ActionKind::SetCheck, control, 0, on, -1, {}, insist};
}

TextAction TypeTextAction(int control, std::string_view utf8)
{
    return {ActionKind::TypeText, control, 0, false, -1, std::string(utf8)};
}

TextAction SelectAction(int list, long index)
{
    return {ActionKind::Select, list, 0, false, index, {}};
}

TextAction PressAction(int button)
{
    return {ActionKind::Press, button, 0, false, -1, {}};
}

TextAction AddFileAction(int button, int list, std::string_view path)
{
    return {ActionKind::AddFile, button, list, false, -1, std::string(path)};
}

TextAction RemoveFileAction(int button, int list, std::string_view path)
{
    return {ActionKind::RemoveFile, button, list, false, -1, std::string(path)};
}

TextAction TickAction()
{
    return {ActionKind::Tick, 0, 0, false, -1, {}};
}

TextAction ShowTextAction()
{
    return {ActionKind::ShowText, 0, 0, false, -1, {}};
}

TextAction ShowJsonAction()
{
    return {ActionKind::ShowJson, 0, 0, false, -1, {}};
}

bool ParseAction(const Dialog& dialog, std::string_view line, TextAction* action, std::string* error)
{
    const size_t last = line.find_last_not_of(" \t");
    line = line.substr(0, last == std::string_view::npos ? 0 : last + 1);
    const std::string_view name = TakeWord(&line);
    for (const CommandRow& row : kCommands) {
        if (name == row.name)
            return row.parse(dialog, line, action, error);
    }
    *error = "no command \"" + std::string(name) + "\"; help lists them";
    return false;
}

std::string ActionHelp()
{
    std::string help;
    for (const CommandRow& row : kCommands) {
        std::string usage = row.usage;
        usage.resize(std::max(usage.size() + 1, kUsageWidth), ' ');
        help += usage + row.summary + "\n";
    }
    return help;
}

}  // namespace pavex
