// client/check/write_obstacle.cpp: what keeps the add-in from writing into a folder.
#include "client/check/write_obstacle.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace pavex {

namespace {

// No file can be made there, for one reason or the other.
bool IsFull(const std::string& folder)
{
    struct statvfs disk {};
    if (statvfs(folder.c_str(), &disk) != 0)
        return false;
    const auto blocks = geteuid() == 0 ? disk.f_bfree : disk.f_bavail;
    const bool countsFiles = disk.f_files != 0;
    return (disk.f_blocks != 0 && blocks == 0) || (countsFiles && disk.f_favail == 0);
}

// The reason, an errno; 0: none.
int WhyNotInto(const std::string& existing, const struct stat& about)
{
    if (!S_ISDIR(about.st_mode))
        return ENOTDIR;
    if (faccessat(AT_FDCWD, existing.c_str(), W_OK | X_OK, AT_EACCESS) != 0)
        return errno;
    return IsFull(existing) ? ENOSPC : 0;
}

}  // namespace

std::string FindWriteObstacle(const std::string& folder)
{
    std::filesystem::path place = folder;
    struct stat about {};
    int reason = 0;
    while (stat(place.c_str(), &about) != 0) {
        reason = errno;
        const bool isToBeMade = reason == ENOENT || reason == ENOTDIR;
        if (!isToBeMade || !place.has_relative_path())
            return place.string() + ": " + std::strerror(reason);
        place = place.parent_path();
    }
    reason = WhyNotInto(place.string(), about);
    return reason == 0 ? std::string() : place.string() + ": " + std::strerror(reason);
}

}  // namespace pavex
