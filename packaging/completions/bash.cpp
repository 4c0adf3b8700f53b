// packaging/completions/bash.cpp: the completion of bash.
#include "packaging/completions/command_tree.h"

namespace pavex {

namespace {

constexpr const char* kHead = R"(# bash completion for pavex, written by the build from the program's own options.

_pavex_words()
{
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$cur")
}

_pavex_files()
{
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen "$@" -- "$cur")
}

# Database files from here, and by their names those of the data directory.
_pavex_databases()
{
    local data=${XDG_DATA_HOME:-$HOME/.local/share}/pavex path
    [[ -n $home ]] && data=${home/#\~/$HOME}/data
    _pavex_files -f -X '!*.vlt'
    mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -d -- "$cur")
    for path in "$data"/*.vlt; do
        [[ -e $path && ${path##*/} == "$cur"* ]] && COMPREPLY+=("${path##*/}")
    done
}

_pavex()
{
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
    local command='' home=$PAVEX_HOME word i
    COMPREPLY=()
    # --option=VALUE comes as three words.
    if [[ $cur == = ]]; then
        cur=
    elif [[ $prev == = ]]; then
        prev=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for ((i = 1; i < COMP_CWORD; ++i)); do
        word=${COMP_WORDS[i]}
        if [[ -z $command && $word == --home ]]; then
            [[ ${COMP_WORDS[i + 1]} == = ]] && ((++i))
            home=${COMP_WORDS[++i]}
            continue
        fi
        case "$command $word" in
)";

constexpr const char* kMiddle = R"(        esac
    done
    case "$command $prev" in
)";

constexpr const char* kTail = R"(    esac
}

complete -F _pavex pavex
)";

// What completes a value; empty when nothing does.
std::string ActionFor(const Argument& argument)
{
    switch (argument.kind) {
    case ValueKind::Choice:
        return "_pavex_words " + Quoted(Joined(argument.choices));
    case ValueKind::Database:
        return "_pavex_databases";
    case ValueKind::Folder:
        return "_pavex_files -d";
    case ValueKind::File:
        return "_pavex_files -f";
    case ValueKind::None:
    case ValueKind::Free:
        break;
    }
    return "";
}

std::string CommandPatterns(const std::vector<const CommandTree*>& commands)
{
    std::string text;
    for (const CommandTree* command : commands) {
        const size_t last = command->path.rfind(' ');
        if (command->path.empty())
            continue;
        const std::string before = last == std::string::npos ? "" : command->path.substr(0, last);
        text += "            " + Quoted(before + " " + command->name) + ") command=" + Quoted(command->path) + " ;;\n";
    }
    return text;
}

std::string ValueCases(const std::vector<const CommandTree*>& commands)
{
    std::string text;
    for (const CommandTree* command : commands)
        for (const Argument& option : command->options) {
            if (option.kind == ValueKind::None)
                continue;
            std::vector<std::string> patterns;
            for (const std::string& name : option.names)
                patterns.push_back(Quoted(command->path + " " + name));
            const std::string action = ActionFor(option);
            text += "        " + Joined(patterns, " | ") + ")\n";
            text += (action.empty() ? "" : "            " + action + "\n") + "            return ;;\n";
        }
    return text;
}

std::string WordsOf(const CommandTree& command)
{
    std::vector<std::string> words;
    for (const Argument& option : command.options)
        words.insert(words.end(), option.names.begin(), option.names.end());
    for (const CommandTree& below : command.commands)
        words.push_back(below.name);
    return Joined(words);
}

std::string WordCases(const std::vector<const CommandTree*>& commands)
{
    std::string text = "    esac\n    case $command in\n";
    for (const CommandTree* command : commands) {
        std::string action = "_pavex_words " + Quoted(WordsOf(*command));
        if (!command->positionals.empty())
            if (const std::string positional = ActionFor(command->positionals.back()); !positional.empty())
                action.insert(0, "if [[ $cur == -* ]]; then ").append("; else ").append(positional).append("; fi");
        text += "        " + Quoted(command->path) + ")\n            " + action + " ;;\n";
    }
    return text;
}

}  // namespace

std::string BashCompletion(const CommandTree& tree)
{
    const std::vector<const CommandTree*> commands = AllCommands(tree);
    return kHead + CommandPatterns(commands) + kMiddle + ValueCases(commands) + WordCases(commands) + kTail;
}

}  // namespace pavex
