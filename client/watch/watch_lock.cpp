// client/watch/watch_lock.cpp: whether a client is watching the sources of a home.
// A record lock: it can be asked for without being taken, so that whoever asks is never taken for one who watches.
#include "client/watch/watch_lock.h"

#include <fcntl.h>

namespace pavex {

namespace {

std::string PathIn(const std::string& dataDirectory)
{
    return dataDirectory + "/watch.lock";
}

struct flock WholeFile()
{
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

}  // namespace

WatchLock::WatchLock(const std::string& dataDirectory)
    : file_(open(PathIn(dataDirectory).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
{
    struct flock lock = WholeFile();
    if (file_.IsOpen())
        (void)fcntl(file_.Get(), F_SETLK, &lock);
}

bool WatchLock::IsHeldByOther(const std::string& dataDirectory)
{
    const Descriptor file(open(PathIn(dataDirectory).c_str(), O_RDWR | O_CLOEXEC));
    struct flock lock = WholeFile();
    return file.IsOpen() && fcntl(file.Get(), F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

}  // namespace pavex
