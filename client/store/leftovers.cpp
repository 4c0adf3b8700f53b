// client/store/leftovers.cpp: names of files that are nobody's once the process that made them is gone.
#include "client/store/leftovers.h"

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <filesystem>

namespace pavex {

namespace {

constexpr std::string_view kMark = "pavex-tmp-";

// The process that made a file with this name; 0 for any other name.
pid_t MakerOf(std::string_view name, std::string_view nameStart)
{
    if (!name.starts_with(nameStart) || !name.substr(nameStart.size()).starts_with(kMark))
        return 0;
    name.remove_prefix(nameStart.size() + kMark.size());
    pid_t maker = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), maker);
    const bool marked = error == std::errc{} && end != name.data() + name.size() && *end == '-';
    return marked ? maker : 0;
}

bool IsGone(pid_t process)
{
    return process > 0 && kill(process, 0) != 0 && errno == ESRCH;
}

}  // namespace

std::string MakerMark()
{
    return std::string(kMark) + std::to_string(getpid()) + "-";
}

void SweepLeftovers(const std::string& folder, std::string_view nameStart)
{
    namespace fs = std::filesystem;
    std::error_code none;
    for (fs::directory_iterator entry(folder, none), end; !none && entry != end; entry.increment(none)) {
        struct stat about {};
        if (IsGone(MakerOf(entry->path().filename().string(), nameStart)) &&
            lstat(entry->path().c_str(), &about) == 0 && S_ISREG(about.st_mode) && about.st_uid == getuid())
            (void)unlink(entry->path().c_str());
    }
}

void SweepLeftoversOf(const std::string& path)
{
    const size_t nameStart = path.rfind('/') + 1;  // 0 without a folder
    SweepLeftovers(nameStart == 0 ? "." : path.substr(0, nameStart), path.substr(nameStart) + ".");
}

}  // namespace pavex
