// packaging/completions/command_tree.cpp: the program's commands and options, as its own table declares them.
#include "packaging/completions/command_tree.h"

#include <algorithm>
#include <sstream>
#include <string_view>

namespace pavex {

namespace {

struct KindRow {
    const char* name;  // of a value in the help
    ValueKind kind;
};
constexpr KindRow kKinds[] = {
    {"DIR", ValueKind::Folder}, {"FILE", ValueKind::Database}, {"FILE.vlt", ValueKind::Database},
    {"INPUT", ValueKind::File}, {"SOURCE", ValueKind::File},
};

// "TEXT:{mail,discussion}" has two.
std::vector<std::string> ChoicesOf(const std::string& type)
{
    const size_t open = type.find('{');
    const size_t close = type.rfind('}');
    std::vector<std::string> choices;
    if (open == type.npos || close == type.npos)
        return choices;
    std::istringstream list(type.substr(open + 1, close - open - 1));
    for (std::string choice; std::getline(list, choice, ',');)
        choices.push_back(choice);
    return choices;
}

ValueKind KindOf(const std::string& name, const std::vector<std::string>& choices)
{
    if (!choices.empty())
        return ValueKind::Choice;
    const auto* const row =
        std::find_if(std::begin(kKinds), std::end(kKinds), [&](const KindRow& each) { return name == each.name; });
    return row == std::end(kKinds) ? ValueKind::Free : row->kind;
}

Argument ReadArgument(const CLI::Option& option)
{
    Argument argument;
    argument.summary = option.get_description();
    argument.isRepeated = option.get_expected_max() > 1 || option.get_items_expected_max() > 1;
    const std::string type = option.get_type_name();
    if (option.get_positional())
        argument.names = {option.get_name(true)};
    for (const std::string& name : option.get_snames())
        argument.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        argument.names.push_back("--" + name);
    if (option.get_positional() || option.get_items_expected_max() > 0) {
        argument.choices = ChoicesOf(type);
        argument.kind = KindOf(option.get_positional() ? argument.names.front() : type, argument.choices);
    }
    return argument;
}

}  // namespace

CommandTree ReadCommandTree(CLI::App& app, const std::string& path)
{
    CommandTree tree{path, app.get_name(), app.get_description(), {}, {}, {}};
    for (const CLI::Option* option : app.get_options())
        (option->get_positional() ? tree.positionals : tree.options).push_back(ReadArgument(*option));
    for (CLI::App* command : app.get_subcommands(nullptr))
        tree.commands.push_back(
            ReadCommandTree(*command, path.empty() ? command->get_name() : path + " " + command->get_name()));
    return tree;
}

std::vector<const CommandTree*> AllCommands(const CommandTree& tree)
{
    std::vector<const CommandTree*> all = {&tree};
    for (const CommandTree& command : tree.commands)
        for (const CommandTree* below : AllCommands(command))
            all.push_back(below);
    return all;
}

std::string Quoted(const std::string& text)
{
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::string Joined(const std::vector<std::string>& words, const std::string& between)
{
    std::string joined;
    for (const std::string& word : words)
        joined += (joined.empty() ? "" : between) + word;
    return joined;
}

}  // namespace pavex
