// client/search/index_damage.cpp: whether the search engine fails because of its index.
// Damage has a hundred messages, and a new index mends it whatever it is; what no new index mends has a few.
#include "client/search/index_damage.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "client/search/file_text.h"
#include "client/store/descriptor.h"

namespace pavex {

namespace {

struct Obstacle {
    std::string_view said;  // by the engine
    const char* meaning;
};
constexpr Obstacle kObstacles[] = {
    {"got signal", "it was stopped"},
    {"exclusive indexer: flock", "another program is writing to the index"},
    {"already locked", "another program is writing to the index"},
};
// Those that the engine tells as the system does, in English.
constexpr int kErrors[] = {ENOSPC, EDQUOT, EROFS, EACCES, EPERM, EMFILE, ENFILE, ENOMEM};

// Of ends by a signal, these tell of the index: the engine fell over it.
constexpr int kCrashes[] = {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL};
constexpr int kSignalled = 128;

bool IsCrash(int exit)
{
    for (const int number : kCrashes)
        if (exit == kSignalled + number)
            return true;
    return false;
}

std::string ObstacleIn(std::string_view line)
{
    for (const Obstacle& obstacle : kObstacles)
        if (line.find(obstacle.said) != line.npos)
            return obstacle.meaning;
    for (const int error : kErrors)
        if (line.find(strerrordesc_np(error)) != line.npos)
            return std::strerror(error);
    return {};
}

// The log tells of metafiles, too, which are no reason to fail; the lines of these files are about the index.
std::string ObstacleInLog(const std::string& log)
{
    constexpr std::string_view kAboutIndex = "rcldb/";
    std::istringstream lines(ReadFileText(log).value_or(""));
    std::string obstacle;
    for (std::string line; obstacle.empty() && std::getline(lines, line);)
        if (line.find(kAboutIndex) != line.npos)
            obstacle = ObstacleIn(line);
    return obstacle;
}

// On a full disk the engine cannot even say so.
std::string WhyNoRoom(const std::string& folder)
{
    constexpr off_t kRoom = off_t{16} << 20;  // bytes: more than the engine writes at a time
    std::string path = folder + "/room-XXXXXX";
    const Descriptor file(mkostemp(path.data(), O_CLOEXEC));
    if (!file.IsOpen())
        return std::strerror(errno);
    (void)unlink(path.c_str());
    const int error = posix_fallocate(file.Get(), 0, kRoom);
    return error == 0 || error == EINVAL || error == EOPNOTSUPP ? std::string() : std::strerror(error);
}

}  // namespace

std::string IndexingLog(const SearchFolders& folders)
{
    return folders.home + "/log";
}

std::string QueryLog(const SearchFolders& folders)
{
    return folders.home + "/query.log";
}

std::string FindObstacle(const SearchFolders& folders, const ProcessResult& result, const std::string& log)
{
    if (result.error != 0)
        return std::strerror(result.error);
    if (result.exit > kSignalled && !IsCrash(result.exit))
        return "it was stopped";
    if (std::string told = ObstacleIn(result.output); !told.empty())
        return told;
    if (std::string told = ObstacleInLog(log); !told.empty())
        return told;
    return WhyNoRoom(folders.home);
}

}  // namespace pavex
