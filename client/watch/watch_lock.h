// client/watch/watch_lock.h: whether a client is watching the sources of a home.
#pragma once

#include <string>

#include "client/store/descriptor.h"

namespace pavex {

// Held by the client that watches, in its data directory; the system gives it back when the process ends in
// whatever way.  One a process.
class WatchLock {
public:
    // Not held when the lock file cannot be made: the watching goes on, and is only not seen by others.
    explicit WatchLock(const std::string& dataDirectory);
    // True when another process holds it.
    static bool IsHeldByOther(const std::string& dataDirectory);

private:
    Descriptor file_;
};

}  // namespace pavex
