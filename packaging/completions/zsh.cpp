// packaging/completions/zsh.cpp: the completion of zsh.
#include <algorithm>

#include "packaging/completions/command_tree.h"

namespace pavex {

namespace {

constexpr const char* kHead = R"(#compdef pavex
# zsh completion for pavex, written by the build from the program's own options.

# Database files from here, and by their names those of the data directory.
_pavex_databases() {
    local data=${XDG_DATA_HOME:-$HOME/.local/share}/pavex
    [[ -n $pavex_home ]] && data=${${(Q)pavex_home}/#\~/$HOME}/data
    local -a names=($data/*.vlt(N:t))
    _alternative 'databases:database:compadd -a names' 'files:database file:_files -g "*.vlt"'
}
)";

// What an option is told to be: brackets, colons and backslashes have a meaning there.
std::string EscapedForArguments(const std::string& text)
{
    std::string escaped;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == ':' || c == '\\')
            escaped += '\\';
        escaped += c;
    }
    return escaped;
}

std::string ActionFor(const Argument& argument)
{
    switch (argument.kind) {
    case ValueKind::Choice:
        return "(" + Joined(argument.choices) + ")";
    case ValueKind::Database:
        return "_pavex_databases";
    case ValueKind::Folder:
        return "_files -/";
    case ValueKind::File:
        return "_files";
    case ValueKind::None:
    case ValueKind::Free:
        break;
    }
    return " ";
}

std::string OptionSpecifications(const Argument& option)
{
    const std::string value = option.kind == ValueKind::None ? "" : ":value:" + ActionFor(option);
    const std::string excluded = option.isRepeated ? "*" : "(" + Joined(option.names) + ")";
    std::string text;
    for (const std::string& name : option.names) {
        std::string words = excluded + name;
        if (option.kind != ValueKind::None && name.starts_with("--"))
            words += '=';
        words.append("[").append(EscapedForArguments(option.summary)).append("]").append(value);
        text += " \\\n        " + Quoted(words);
    }
    return text;
}

std::string FunctionName(const std::string& path)
{
    std::string name = path.empty() ? "_pavex" : "_pavex " + path;
    std::ranges::replace(name, ' ', '_');
    return name;
}

std::string SubcommandCases(const CommandTree& command)
{
    std::string text = "    case $state in\n    command)\n        local -a commands=(";
    for (const CommandTree& below : command.commands)
        text += "\n            " + Quoted(below.name + ":" + EscapedForArguments(below.summary));
    text += ")\n        _describe -t commands command commands ;;\n    argument)\n";
    if (command.path.empty())
        text += "        [[ -n ${opt_args[--home]} ]] && pavex_home=${opt_args[--home]}\n";
    text += "        case ${line[1]} in\n";
    for (const CommandTree& below : command.commands)
        text += "        " + below.name + ") " + FunctionName(below.path) + " ;;\n";
    return text + "        esac ;;\n    esac\n";
}

std::string FunctionFor(const CommandTree& command)
{
    const bool isGroup = !command.commands.empty();
    std::string text = "\n" + FunctionName(command.path) + "() {\n";
    if (command.path.empty())
        text += "    local pavex_home=$PAVEX_HOME\n";
    if (isGroup)
        text += "    local context state state_descr line\n    typeset -A opt_args\n";
    text += isGroup ? "    _arguments -C" : "    _arguments";
    for (const Argument& option : command.options)
        text += OptionSpecifications(option);
    if (isGroup)
        text += " \\\n        '1:command:->command' '*::argument:->argument'";
    for (const Argument& positional : command.positionals)
        text += " \\\n        " + Quoted(std::string(positional.isRepeated ? "*" : "") + ":" +
                                         positional.names.front() + ":" + ActionFor(positional));
    return text + "\n" + (isGroup ? SubcommandCases(command) : "") + "}\n";
}

}  // namespace

std::string ZshCompletion(const CommandTree& tree)
{
    std::string text = kHead;
    for (const CommandTree* command : AllCommands(tree))
        text += FunctionFor(*command);
    return text + "\n_pavex \"$@\"\n";
}

}  // namespace pavex
