// packaging/completions/fish.cpp: the completion of fish.
#include "packaging/completions/command_tree.h"

namespace pavex {

namespace {

constexpr const char* kHead = R"(# fish completion for pavex, written by the build from the program's own options.

# The command so far, as "note put"; the home folder in $__pavex_home.
function __pavex_command
    set -g __pavex_home $PAVEX_HOME
    set -l words (commandline -opc)
    set -e words[1]
    set -l path
    while set -q words[1]
        set -l word $words[1]
        set -e words[1]
        if not set -q path[1]
            switch $word
                case --home
                    set -g __pavex_home $words[1]
                    set -e words[1]
                    continue
                case '--home=*'
                    set -g __pavex_home (string replace -- --home= '' $word)
                    continue
            end
        end
        if contains -- (string join -- ' ' $path $word) $__pavex_commands
            set -a path $word
        end
    end
    string join -- ' ' $path
end

function __pavex_at
    set -l command (__pavex_command)
    test "$command" = "$argv[1]"
end

# Database files from here, and by their names those of the data directory.
function __pavex_databases
    __pavex_command >/dev/null
    set -l data $HOME/.local/share/pavex
    set -q XDG_DATA_HOME[1]; and set data $XDG_DATA_HOME/pavex
    if set -q __pavex_home[1]
        set data (string replace -r '^~' $HOME -- $__pavex_home)/data
    end
    __fish_complete_suffix .vlt
    for path in $data/*.vlt
        string replace -r '.*/' '' -- $path
    end
end

complete -c pavex -f
)";

std::string ValueFlags(const Argument& argument)
{
    switch (argument.kind) {
    case ValueKind::None:
        return "";
    case ValueKind::Choice:
        return " -x -a " + Quoted(Joined(argument.choices));
    case ValueKind::Database:
        return " -x -a '(__pavex_databases)'";
    case ValueKind::Folder:
        return " -x -a '(__fish_complete_directories)'";
    case ValueKind::File:
        return " -r -F";
    case ValueKind::Free:
        return " -x";
    }
    return "";
}

std::string OptionNames(const Argument& option)
{
    std::string flags;
    for (const std::string& name : option.names)
        flags += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    return flags;
}

std::string LinesOf(const CommandTree& command)
{
    const std::string begin = "complete -c pavex -n '__pavex_at \"" + command.path + "\"'";
    std::string text;
    for (const CommandTree& below : command.commands)
        text += begin + " -a " + below.name + " -d " + Quoted(below.summary) + "\n";
    for (const Argument& option : command.options)
        text += begin + OptionNames(option) + ValueFlags(option) + " -d " + Quoted(option.summary) + "\n";
    for (const Argument& positional : command.positionals)
        if (positional.kind == ValueKind::File)
            text += begin + " -F\n";
    return text;
}

}  // namespace

std::string FishCompletion(const CommandTree& tree)
{
    std::string names = "set -g __pavex_commands";
    std::string lines;
    for (const CommandTree* command : AllCommands(tree)) {
        if (!command->path.empty())
            names += " " + Quoted(command->path);
        lines += LinesOf(*command);
    }
    return kHead + names + "\n" + lines;
}

}  // namespace pavex
