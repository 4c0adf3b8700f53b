// client/app/instance_lock.h: one client at a time indexes for a home.
#pragma once

#include <optional>
#include <string>

namespace pavex {

// Held for the life of the object; the system gives it back when a process ends in whatever way.
class InstanceLock {
public:
    // Takes the lock of the current home.  None, with *error saying why, when another process has it or the
    // lock file cannot be made.
    //   isHeld  may be null; gets whether another process has it.
    static std::optional<InstanceLock> Take(std::string* error, bool* isHeld = nullptr);
    InstanceLock(InstanceLock&& other) noexcept;
    InstanceLock& operator=(InstanceLock&& other) = delete;
    ~InstanceLock();

private:
    explicit InstanceLock(int descriptor) : descriptor_(descriptor) {}
    int descriptor_;
};

}  // namespace pavex
