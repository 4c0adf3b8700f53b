// packaging/completions/main.cpp: writes what a shell needs to complete the program's command line:
// pavex_completions bash|fish|zsh FILE
#include <exception>
#include <fstream>
#include <iostream>
#include <map>

#include "client/app/command.h"
#include "packaging/completions/command_tree.h"

namespace {

using namespace pavex;

int Write(const std::string& shell, const std::string& path)
{
    const std::map<std::string, std::string (*)(const CommandTree&)> shells = {
        {"bash", BashCompletion}, {"fish", FishCompletion}, {"zsh", ZshCompletion}};
    if (!shells.contains(shell))
        return Fail("no completion is known for " + shell);
    CLI::App program;
    std::string home;
    (void)ConfigureProgram(program, &home);
    std::ofstream file(path);
    file << shells.at(shell)(ReadCommandTree(program));
    file.close();
    return file ? kExitDone : Fail("cannot write " + path);
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "use: pavex_completions bash|fish|zsh FILE\n";
        return kExitWrongUse;
    }
    try {
        return Write(argv[1], argv[2]);
    } catch (const std::exception& error) {
        return Fail(error.what());
    }
}
