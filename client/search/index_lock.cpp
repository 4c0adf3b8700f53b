// client/search/index_lock.cpp: who may read or change the search engine's index of a home.
#include "client/search/index_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace pavex {

Descriptor LockIndex(const SearchFolders& folders, bool isAlone, std::string* error,
                     const std::function<void()>& onWait)
{
    // beside the folder, which is made anew when the settings change
    const std::string path = folders.home + ".lock";
    std::error_code failed;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), failed);
    Descriptor lock(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (const int why = errno; !lock.IsOpen() && !isAlone) {
        // where nothing can be written an index can still be read
        lock = Descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC));
        errno = why;
    }
    const int operation = isAlone ? LOCK_EX : LOCK_SH;
    if (onWait && lock.IsOpen() && flock(lock.Get(), operation | LOCK_NB) != 0)
        onWait();
    while (lock.IsOpen() && flock(lock.Get(), operation) != 0) {
        if (errno == EINTR)
            continue;
        *error = "cannot lock " + path + ": " + std::strerror(errno);
        return Descriptor();
    }
    if (!lock.IsOpen())
        *error = "cannot make " + path + ": " + std::strerror(errno);
    return lock;
}

}  // namespace pavex
