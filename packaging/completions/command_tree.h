// packaging/completions/command_tree.h: the program's commands and options, as its own table declares them.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace pavex {

// How a value is completed.
enum class ValueKind { None, Choice, Database, Folder, File, Free };

struct Argument {
    std::vector<std::string> names;  // with their dashes; of a positional its name
    std::string summary;
    ValueKind kind = ValueKind::None;  // None: a switch
    std::vector<std::string> choices;
    bool isRepeated = false;
};

struct CommandTree {
    std::string path;  // names from below the program on, "note put"; of the program itself empty
    std::string name;
    std::string summary;
    std::vector<Argument> options;
    std::vector<Argument> positionals;
    std::vector<CommandTree> commands;
};

CommandTree ReadCommandTree(CLI::App& app, const std::string& path = "");
// The tree and all below it, the tree first.
std::vector<const CommandTree*> AllCommands(const CommandTree& tree);

std::string BashCompletion(const CommandTree& tree);
std::string FishCompletion(const CommandTree& tree);
std::string ZshCompletion(const CommandTree& tree);

// In single quotes, as the shells read them.
std::string Quoted(const std::string& text);
std::string Joined(const std::vector<std::string>& words, const std::string& between = " ");

}  // namespace pavex
