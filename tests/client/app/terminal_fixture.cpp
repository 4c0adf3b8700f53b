// tests/client/app/terminal_fixture.cpp: a program run on a terminal of a given size.
#include "tests/client/app/terminal_fixture.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <clocale>
#include <csignal>
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
    const std::vector<std::string> own = {"TERM=", "NO_COLOR=", "PAGER=", "LESS=", "COLUMNS="};
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

TerminalSession::TerminalSession(const Terminal& terminal, const std::vector<std::string>& command)
{
    const winsize size{24, terminal.columns, 0, 0};
    const std::vector<std::string> environment = EnvironmentFor(terminal);
    process_ = forkpty(&screen_, nullptr, nullptr, &size);
    if (process_ == 0)
        Become(command, environment);
    if (process_ < 0)
        ADD_FAILURE() << "no terminal";
}

TerminalSession::~TerminalSession()
{
    if (process_ > 0) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    if (screen_ >= 0)
        close(screen_);
}

TerminalSession::Piece TerminalSession::ReadOn(int mostMs)
{
    pollfd screen{screen_, POLLIN, 0};
    if (poll(&screen, 1, mostMs) == 0)
        return Piece::kNone;
    std::array<char, 4096> piece{};
    const ssize_t size = read(screen_, piece.data(), piece.size());
    if (size > 0)
        output_.append(piece.data(), static_cast<size_t>(size));
    return size > 0 || (size < 0 && errno == EINTR) ? Piece::kRead : Piece::kEnd;
}

bool TerminalSession::Shows(const std::string& text, int mostMs)
{
    while (Output().find(text) == std::string::npos)
        if (ReadOn(mostMs) != Piece::kRead)
            return false;
    return true;
}

void TerminalSession::Type(std::string_view keys) const
{
    EXPECT_EQ(write(screen_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
}

int TerminalSession::Wait()
{
    if (process_ <= 0)
        return -1;
    constexpr int kMostMs = 60000;
    Piece piece = Piece::kRead;
    while (piece == Piece::kRead)
        piece = ReadOn(kMostMs);
    if (piece == Piece::kNone) {
        ADD_FAILURE() << "nothing more for a minute after: " << output_;
        kill(process_, SIGKILL);
    }
    int status = 0;
    while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    process_ = 0;
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

std::string TerminalSession::Output() const
{
    std::string output = output_;
    Replace(&output, "\r\n", "\n");
    return output;
}

std::string RunOnTerminal(const Terminal& terminal, const std::vector<std::string>& command)
{
    TerminalSession session(terminal, command);
    EXPECT_EQ(session.Wait(), 0) << testing::PrintToString(command) << session.Output();
    return session.Output();
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
