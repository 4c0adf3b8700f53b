// tests/client/app/program_fixture.cpp: the built program, run as users run it.
#include "tests/client/app/program_fixture.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <sstream>
#include <stdexcept>

namespace pavex {

namespace fs = std::filesystem;

namespace {

constexpr const char* kProgram = TORVIK_BINARY_DIR "/bin/pavex";

bool IsMetafile(const fs::path& path)
{
    return path.extension().string().starts_with(".vPavex");
}

class FileActions {
public:
    explicit FileActions(const std::string& stem)
    {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, (stem + ".out").c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, (stem + ".err").c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0600);
    }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    const posix_spawn_file_actions_t* Get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_;
};

}  // namespace

Process::Process(const std::vector<std::string>& command, const std::string& outputStem) : stem_(outputStem), pid_(0)
{
    std::vector<std::string> words = command;
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const FileActions actions(stem_);
    if (posix_spawnp(&pid_, arguments[0], actions.Get(), nullptr, arguments.data(), environ) != 0)
        throw std::runtime_error("cannot start " + command[0]);
}

Process::~Process()
{
    if (pid_ == 0)
        return;
    Signal(SIGKILL);
    waitpid(pid_, nullptr, 0);
}

void Process::Signal(int number) const
{
    kill(pid_, number);
}

std::string Process::Error() const
{
    return ReadWholeFile(stem_ + ".err");
}

ProgramResult Process::Wait()
{
    int status = 0;
    while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
    }
    pid_ = 0;
    return {WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status), ReadWholeFile(stem_ + ".out"),
            ReadWholeFile(stem_ + ".err")};
}

ProgramHome::ProgramHome()
{
    setenv("LC_ALL", "C", 1);
}

std::vector<std::string> ProgramHome::CommandLine(const std::vector<std::string>& arguments) const
{
    std::vector<std::string> command = {kProgram, "--home", Path("home")};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

std::unique_ptr<Process> ProgramHome::Start(const std::vector<std::string>& arguments)
{
    return std::make_unique<Process>(CommandLine(arguments), Path("run" + std::to_string(runs_++)));
}

ProgramResult ProgramHome::Run(const std::vector<std::string>& arguments)
{
    return Start(arguments)->Wait();
}

ProgramResult ProgramHome::RunIn(const std::string& locale, const std::vector<std::string>& arguments)
{
    std::vector<std::string> command = CommandLine(arguments);
    const std::string setting = "LC_ALL=" + locale;
    command.insert(command.begin(), {"env", "-u", "LANGUAGE", setting});
    return Process(command, Path("run" + std::to_string(runs_++))).Wait();
}

nlohmann::ordered_json ProgramHome::RunJson(const std::vector<std::string>& arguments)
{
    const ProgramResult result = Run(arguments);
    EXPECT_EQ(result.exit, 0) << testing::PrintToString(arguments);
    EXPECT_EQ(result.err, "");
    return nlohmann::ordered_json::parse(result.out);
}

std::vector<uint32_t> ProgramHome::Put(const std::string& database, const std::string& jsonLines)
{
    WriteWholeFile(Path("notes.json"), jsonLines);
    const ProgramResult result = Run({"note", "put", "--db", database, "--json", Path("notes.json")});
    EXPECT_EQ(result.exit, 0) << result.err;
    std::vector<uint32_t> ids;
    std::istringstream lines(result.out);
    for (std::string line; std::getline(lines, line);)
        ids.push_back(nlohmann::json::parse(line)["noteid"].get<uint32_t>());
    return ids;
}

void ProgramHome::ImportSample()
{
    const ProgramResult result = Run({"import", TORVIK_SOURCE_DIR "/samples/mail"});
    ASSERT_EQ(result.exit, 0) << result.err;
    Enable();
}

void ProgramHome::Enable()
{
    const ProgramResult result = Run({"settings", "--enable", "--yes"});
    ASSERT_EQ(result.exit, 0) << result.err;
}

nlohmann::ordered_json ProgramHome::Index()
{
    const nlohmann::ordered_json report = RunJson({"index", "--full-speed", "--json"});
    EXPECT_EQ(report["stopped"], false);
    EXPECT_EQ(report["databases"].size(), 1U) << report;
    return report["databases"].at(0);
}

fs::path ProgramHome::Root() const
{
    return Path("home/caches/Metadata/Quorvex/Pavex/Spotlight");
}

Metafiles ProgramHome::ReadMetafiles() const
{
    Metafiles files;
    if (fs::exists(Root()))
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(Root()))
            if (IsMetafile(entry.path()))
                files[fs::relative(entry.path(), Root()).string()] = ReadWholeFile(entry.path().string());
    return files;
}

size_t ProgramHome::CountMetafiles() const
{
    size_t count = 0;
    std::error_code gone;  // a folder that is not there yet
    for (fs::recursive_directory_iterator entry(Root(), gone), end; !gone && entry != end; entry.increment(gone))
        if (IsMetafile(entry->path()))
            ++count;
    return count;
}

MetafileTimes ProgramHome::ReadTimes() const
{
    MetafileTimes times;
    for (const auto& [name, content] : ReadMetafiles())
        times[name] = fs::last_write_time(Root() / name);
    return times;
}

std::vector<std::string> ProgramHome::OtherFiles() const
{
    std::vector<std::string> others;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(Path("home/caches")))
        if (entry.is_regular_file() && !IsMetafile(entry.path()))
            others.push_back(entry.path().string());
    return others;
}

void ExpectOneClearLine(const ProgramResult& result, int exit, const std::vector<std::string>& parts)
{
    EXPECT_EQ(result.exit, exit);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    for (const std::string& part : parts)
        EXPECT_THAT(result.err, testing::HasSubstr(part));
}

}  // namespace pavex
