// tests/client/app/terminal_fixture.cpp: a program run on a terminal of a given size.
#include "tests/client/app/terminal_fixture.h"

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cwchar>
#include <sstream>

namespace pavex {

namespace {

void Replace(std::string* text, const std::string& what, const std::string& with)
{
    for (size_t at = text->find(what); at != text->npos; at = text->find(what, at + with.size()))
        text->replace(at, what.size(), with);
}

// In the child; does not return.
[[noreturn]] void Become(const std::vector<std::string>& command, std::vector<std::string> environment)
{
    std::vector<std::string> words = command;
    std::vector<char*> arguments;
    std::vector<char*> variables;
    for (std::string& word : words)
        arguments.push_back(word.data());
    for (std::string& variable : environment)
        variables.push_back(variable.data());
    arguments.push_back(nullptr);
    variables.push_back(nullptr);
    execvpe(arguments[0], arguments.data(), variables.data());
    _exit(127);
}

std::vector<std::string> EnvironmentFor(const Terminal& terminal)
{
    std::vector<std::string> variables;
    const std::vector<std::string> own = {"TERM=", "NO_COLOR=", "PAGER=", "COLUMNS="};
    for (char** variable = environ; *variable != nullptr; ++variable) {
        bool isOwn = false;
        for (const std::string& name : own)
            isOwn = isOwn || std::string(*variable).starts_with(name);
        if (!isOwn)
            variables.emplace_back(*variable);
    }
    bool hasTerm = false;
    for (const auto& [name, value] : terminal.environment) {
        hasTerm = hasTerm || name == "TERM";
        variables.push_back(name + "=" + value);
    }
    if (!hasTerm)
        variables.emplace_back("TERM=xterm");
    return variables;
}

}  // namespace

std::string RunOnTerminal(const Terminal& terminal, const std::vector<std::string>& command)
{
    const winsize size{24, terminal.columns, 0, 0};
    const std::vector<std::string> environment = EnvironmentFor(terminal);
    int screen = -1;
    const pid_t process = forkpty(&screen, nullptr, nullptr, &size);
    if (process == 0)
        Become(command, environment);
    if (process < 0) {
        ADD_FAILURE() << "no terminal";
        return {};
    }
    std::string output;
    std::array<char, 4096> piece{};
    ssize_t read = 0;
    while ((read = ::read(screen, piece.data(), piece.size())) > 0 || (read < 0 && errno == EINTR))
        if (read > 0)
            output.append(piece.data(), static_cast<size_t>(read));
    close(screen);
    int status = -1;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    EXPECT_EQ(status, 0) << testing::PrintToString(command) << output;
    Replace(&output, "\r\n", "\n");
    return output;
}

int ScreenColumns(const std::string& line)
{
    std::string text = line;
    for (const char* sequence : {"\033[1m", "\033[0m"})
        Replace(&text, sequence, "");
    if (std::setlocale(LC_CTYPE, "C.UTF-8") == nullptr) {
        ADD_FAILURE() << "no UTF-8";
        return 0;
    }
    std::vector<wchar_t> wide(text.size() + 1);
    const size_t length = std::mbstowcs(wide.data(), text.c_str(), wide.size());
    EXPECT_NE(length, static_cast<size_t>(-1)) << line;
    const int columns = length == static_cast<size_t>(-1) ? 0 : wcswidth(wide.data(), length);
    EXPECT_GE(columns, 0) << line;
    return columns;
}

std::vector<std::string> LinesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

}  // namespace pavex
