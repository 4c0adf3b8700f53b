// client/app/command.h: what a subcommand of the program is.
// One table (client/app/commands.cpp) gives dispatch and help; each subcommand has a file of its own.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <span>
#include <string>

#include "client/store/host.h"

namespace pavex {

constexpr int kExitDone = 0;
constexpr int kExitFailed = 1;
constexpr int kExitWrongUse = 2;

// Runs with the host started (StartHost); returns the exit status.
using CommandFunction = std::function<int()>;

struct CommandRow {
    const char* name;
    const char* summary;
    // Declares the options and returns what runs with the values they got.
    CommandFunction (*configure)(CLI::App& options);
};
std::span<const CommandRow> Commands();

CommandFunction ConfigureCheck(CLI::App& options);
CommandFunction ConfigureDesktop(CLI::App& options);
CommandFunction ConfigureExplain(CLI::App& options);
CommandFunction ConfigureHistory(CLI::App& options);
CommandFunction ConfigureImport(CLI::App& options);
CommandFunction ConfigureIndex(CLI::App& options);
CommandFunction ConfigureNote(CLI::App& options);
CommandFunction ConfigureOpen(CLI::App& options);
CommandFunction ConfigureRun(CLI::App& options);
CommandFunction ConfigureSearch(CLI::App& options);
CommandFunction ConfigureSettings(CLI::App& options);
CommandFunction ConfigureStatus(CLI::App& options);
CommandFunction ConfigureWatch(CLI::App& options);

// Declares every option and command of the program.
//   home  gets the value of --home; has to live as long as the program's options.
// Returns what runs for each command.
std::map<const CLI::App*, CommandFunction> ConfigureProgram(CLI::App& program, std::string* home);

// The whole program: parses, starts the host, runs the command.
int RunProgram(int argc, char** argv);

// pavex settings without options: the settings dialog as a window, while the add-in indexes.
int ShowSettingsWindow();

// One line on standard error, "pavex: ...".
void Warn(const std::string& message);
// The same, and kExitFailed.
int Fail(const std::string& message);

// The native path of a database as a user names it: an absolute path, or one that is found from the
// working folder, or has a folder part; else the file of that name in the data directory.
std::string DatabasePath(const std::string& name);
// The shortest name that DatabasePath takes for this path.
std::string DatabaseName(const std::string& path);

}  // namespace pavex
