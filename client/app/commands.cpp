// client/app/commands.cpp: the table of subcommands, and the program around them.
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <iostream>
#include <sstream>

#include "client/app/command.h"
#include "client/app/standard_output.h"
#include "client/app/terminal_text.h"
#include "client/foundation/host.h"
#include "client/store/path.h"

namespace pavex {

namespace {

constexpr CommandRow kCommands[] = {
    {"import", "read mail, calendars, contacts, bookmarks and texts into databases", ConfigureImport},
    {"note", "put, get, list and delete single notes", ConfigureNote},
    {"settings", "show and change the desktop search settings", ConfigureSettings},
    {"index", "bring the search metadata up to date, once", ConfigureIndex},
    {"watch", "have sources read in again when they change", ConfigureWatch},
    {"run", "stay and keep the search metadata up to date", ConfigureRun},
    {"desktop", "stay as run does, with a window and a tray icon", ConfigureDesktop},
    {"status", "tell what is indexed and how far", ConfigureStatus},
    {"search", "find notes by their words, through the desktop search", ConfigureSearch},
    {"open", "show the note behind a search result", ConfigureOpen},
    {"history", "list the notes that were opened", ConfigureHistory},
    {"check", "hold databases and metafiles against each other", ConfigureCheck},
    {"explain", "tell why a note is findable, or is not", ConfigureExplain},
};

// The user's own choice comes before what the locale says.
void ChooseLanguage()
{
    std::string language;
    if (GetVariable("Language", &language) && !language.empty())
        SetUserLanguages({language});
}

}  // namespace

std::span<const CommandRow> Commands()
{
    return kCommands;
}

void Warn(const std::string& message)
{
    std::cerr << "pavex: " << PrintableLine(message) << '\n';
}

int Fail(const std::string& message)
{
    Warn(message);
    return kExitFailed;
}

std::string DatabasePath(const std::string& name)
{
    namespace fs = std::filesystem;
    if (IsOnServer(name))
        return name;
    std::error_code none;
    if (name.find('/') != std::string::npos || fs::exists(name, none))
        return fs::absolute(name, none).lexically_normal().string();
    return (fs::path(CurrentPlaces().data) / name).string();
}

std::string DatabaseName(const std::string& path)
{
    std::string name = std::filesystem::path(path).filename().string();
    return DatabasePath(name) == path ? name : path;
}

std::map<const CLI::App*, CommandFunction> ConfigureProgram(CLI::App& program, std::string* home)
{
    program.name("pavex");
    program.description("A small portable Pavex client that keeps your notes findable in the desktop search.");
    program.require_subcommand(1);
    program.set_version_flag("--version", "pavex " TORVIK_VERSION);
    program.add_option("--home", *home, "keep settings, data, caches and log below this folder")->type_name("DIR");
    std::map<const CLI::App*, CommandFunction> functions;
    for (const CommandRow& row : kCommands) {
        CLI::App* const options = program.add_subcommand(row.name, row.summary);
        functions[options] = row.configure(*options);
    }
    return functions;
}

namespace {

int RunCommand(int argc, char** argv)
{
    CLI::App program;
    std::string home;
    const std::map<const CLI::App*, CommandFunction> functions = ConfigureProgram(program, &home);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        std::ostringstream wrongUse;
        const bool isAnswered = program.exit(error, std::cout, wrongUse) == 0;
        std::cerr << PrintableLines(wrongUse.str());
        return isAnswered ? kExitDone : kExitWrongUse;
    }
    umask(S_IRWXG | S_IRWXO);  // whatever is written is the user's own business
    std::string problem;
    if (!StartHost(FindPlaces(home), &problem))
        return Fail(problem);
    ChooseLanguage();
    std::string mailFile;
    if (!GetVariable("MailFile", &mailFile))
        OverrideVariable("MailFile", "mail.vlt");  // where mail is imported to; the settings dialog proposes it
    return functions.at(program.get_subcommands().front())();
}

}  // namespace

int RunProgram(int argc, char** argv)
{
    KeepStandardFiles();
    StandardOutput output(&std::cout, STDOUT_FILENO);
    const int exit = RunCommand(argc, argv);
    const int failure = output.Finish();
    if (failure == 0)
        return exit;
    (void)Fail(std::string("cannot write to standard output: ") + std::strerror(failure));
    return exit == kExitDone ? kExitFailed : exit;
}

}  // namespace pavex
