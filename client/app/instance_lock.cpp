// client/app/instance_lock.cpp: one client at a time indexes for a home.
#include "client/app/instance_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "client/store/host.h"

namespace pavex {

std::optional<InstanceLock> InstanceLock::Take(std::string* error, bool* isHeld)
{
    if (isHeld != nullptr)
        *isHeld = false;
    const std::string path = CurrentPlaces().data + "/client.lock";
    const int descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        *error = "cannot make " + path + ": " + std::strerror(errno);
        return std::nullopt;
    }
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        const bool held = errno == EWOULDBLOCK;
        *error = held ? "another pavex run or pavex index is at work on " + CurrentPlaces().data
                      : "cannot lock " + path + ": " + std::strerror(errno);
        if (isHeld != nullptr)
            *isHeld = held;
        close(descriptor);
        return std::nullopt;
    }
    return InstanceLock(descriptor);
}

InstanceLock::InstanceLock(InstanceLock&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

InstanceLock::~InstanceLock()
{
    if (descriptor_ >= 0)
        close(descriptor_);
}

}  // namespace pavex
