// client/app/pager.cpp: the program that shows long texts on a terminal page by page.
#include "client/app/pager.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "client/app/terminal_text.h"
#include "client/search/spawn_signals.h"
#include "client/store/descriptor.h"

namespace pavex {

namespace {

// Nobody asked for it by name, and so nobody is told that it is not there.
constexpr const char* kUsualPager = "command -v less >/dev/null || exit 127; exec less";

// Empty: none.
std::string ChosenPager()
{
    const char* const chosen = std::getenv("PAGER");
    if (chosen != nullptr && *chosen != '\0')
        return chosen;
    return IsDumbTerminal() ? "" : kUsualPager;
}

// A signal is ignored until the end of the block: the keys that send one are the pager's while it shows, and one that
// is left early has seen enough.
class Ignored {
public:
    explicit Ignored(int number) : number_(number), before_(std::signal(number, SIG_IGN)) {}
    ~Ignored() { (void)std::signal(number_, before_); }
    Ignored(const Ignored&) = delete;
    Ignored& operator=(const Ignored&) = delete;

private:
    int number_;
    void (*before_)(int);
};

// Zero when it cannot be started.
pid_t StartShell(std::string command, int input)
{
    std::string shell = "/bin/sh";
    std::string option = "-c";
    std::array<char*, 4> words = {shell.data(), option.data(), command.data(), nullptr};
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, input, STDIN_FILENO);
    pid_t process = 0;
    if (posix_spawn(&process, shell.c_str(), &files, SpawnSignals().Get(), words.data(), environ) != 0)
        process = 0;
    posix_spawn_file_actions_destroy(&files);
    return process;
}

}  // namespace

bool ShowInPager(const std::string& text)
{
    const std::string pager = ChosenPager();
    std::array<int, 2> ends{};
    if (pager.empty() || pipe2(ends.data(), O_CLOEXEC) != 0)
        return false;
    // Unless the user has other wishes: bold is bold, and what fits on the screen needs no paging.
    (void)setenv("LESS", "FRX", 0);
    Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    const Ignored brokenPipe(SIGPIPE);
    const Ignored interrupt(SIGINT);
    const Ignored quit(SIGQUIT);
    const pid_t process = StartShell(pager, reading.Get());
    if (process == 0)
        return false;
    (void)reading.Close();
    (void)WriteAll(writing.Get(), text);
    (void)writing.Close();
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    constexpr int kNotFound = 127;
    return !WIFEXITED(status) || WEXITSTATUS(status) != kNotFound;
}

}  // namespace pavex
