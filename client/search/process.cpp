// client/search/process.cpp: runs the search engine's programs.
#include "client/search/process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include "client/search/spawn_signals.h"
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

// Nothing to read, one pipe for all that is written, and what is to be held open.
class ToolFiles {
public:
    ToolFiles(int pipe, int held)
    {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions_, pipe, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions_, pipe, STDERR_FILENO);
        if (held >= 0)
            posix_spawn_file_actions_adddup2(&actions_, held, held);  // onto itself: it stays open over the exec
    }
    ~ToolFiles() { posix_spawn_file_actions_destroy(&actions_); }
    ToolFiles(const ToolFiles&) = delete;
    ToolFiles& operator=(const ToolFiles&) = delete;
    const posix_spawn_file_actions_t* Get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_;
};

// Takes output as it comes and hands it on by lines.
class OutputLines {
public:
    OutputLines(const LineCallback& onLine, std::string* kept) : onLine_(onLine), kept_(kept) {}

    void Add(std::string_view bytes)
    {
        kept_->append(bytes.substr(0, kMostOutput - std::min(kMostOutput, kept_->size())));
        for (size_t end = bytes.find('\n'); onLine_ && end != bytes.npos; end = bytes.find('\n')) {
            Extend(bytes.substr(0, end));
            HandOn();
            bytes.remove_prefix(end + 1);
        }
        if (onLine_)
            Extend(bytes);
    }
    void End()
    {
        if (!line_.empty())
            HandOn();
    }

private:
    void Extend(std::string_view part)
    {
        line_.append(part.substr(0, kLongestLine - std::min(kLongestLine, line_.size())));
    }
    void HandOn()
    {
        onLine_(line_);
        line_.clear();
    }

    const LineCallback& onLine_;
    std::string* kept_;
    std::string line_;
};

// What was read counts; the exit status tells the rest.
void ReadOutput(int descriptor, OutputLines* lines)
{
    std::array<char, 1 << 16> piece{};
    ssize_t size = 0;
    while ((size = read(descriptor, piece.data(), piece.size())) > 0 || (size < 0 && errno == EINTR))
        if (size > 0)
            lines->Add({piece.data(), static_cast<size_t>(size)});
    lines->End();
}

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

ProcessResult RunProcess(const std::vector<std::string>& command, const LineCallback& onLine, int held)
{
    ProcessResult result;
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        result.error = errno;
        return result;
    }
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    const ToolFiles files(writing.Get(), held);
    std::vector<std::string> words = command;
    std::vector<std::string> environment = EnvironmentOfTool();
    pid_t process = 0;
    result.error = posix_spawnp(&process, words.front().c_str(), files.Get(), SpawnSignals().Get(),
                                Pointers(&words).data(), Pointers(&environment).data());
    (void)writing.Close();
    if (result.error != 0)
        return result;
    OutputLines lines(onLine, &result.output);
    ReadOutput(reading.Get(), &lines);
    result.exit = ExitOf(process);
    return result;
}

}  // namespace pavex
