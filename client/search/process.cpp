// client/search/process.cpp: runs the search engine's programs.
#include "client/search/process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>

#include "client/store/descriptor.h"

namespace pavex {

namespace {

constexpr std::string_view kOwnVariables[] = {"LC_ALL=C.UTF-8", "TZ=UTC"};
constexpr std::string_view kWithheld[] = {"LC_ALL=",
                                          "LANGUAGE=",
                                          "TZ=",
                                          "RECOLL_CONFDIR=",
                                          "RECOLL_CONFTOP=",
                                          "RECOLL_CONFMID=",
                                          "RECOLL_EXTRA_DBS=",
                                          "RECOLL_ACTIVE_EXTRA_DBS="};

std::vector<std::string> EnvironmentOfTool()
{
    std::vector<std::string> variables(std::begin(kOwnVariables), std::end(kOwnVariables));
    for (char** variable = environ; *variable != nullptr; ++variable) {
        bool isWithheld = false;
        for (const std::string_view name : kWithheld)
            isWithheld = isWithheld || std::string_view(*variable).starts_with(name);
        if (!isWithheld)
            variables.emplace_back(*variable);
    }
    return variables;
}

std::vector<char*> Pointers(std::vector<std::string>* texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts->size() + 1);
    for (std::string& text : *texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

// Nothing to read, and one pipe for all that is written.
class ToolFiles {
public:
    explicit ToolFiles(int pipe)
    {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions_, pipe, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions_, pipe, STDERR_FILENO);
    }
    ~ToolFiles() { posix_spawn_file_actions_destroy(&actions_); }
    ToolFiles(const ToolFiles&) = delete;
    ToolFiles& operator=(const ToolFiles&) = delete;
    const posix_spawn_file_actions_t* Get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_;
};

int ExitOf(pid_t process)
{
    int status = 0;
    while (waitpid(process, &status, 0) < 0)
        if (errno != EINTR)
            return -1;
    constexpr int kSignalled = 128;
    return WIFSIGNALED(status) ? kSignalled + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace

ProcessResult RunProcess(const std::vector<std::string>& command)
{
    ProcessResult result;
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        result.error = errno;
        return result;
    }
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    const ToolFiles files(writing.Get());
    std::vector<std::string> words = command;
    std::vector<std::string> environment = EnvironmentOfTool();
    pid_t process = 0;
    result.error = posix_spawnp(&process, words.front().c_str(), files.Get(), nullptr, Pointers(&words).data(),
                                Pointers(&environment).data());
    (void)writing.Close();
    if (result.error != 0)
        return result;
    (void)ReadAll(reading.Get(), &result.output);  // what was read counts; the exit status tells the rest
    result.exit = ExitOf(process);
    return result;
}

}  // namespace pavex
