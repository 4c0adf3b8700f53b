// client/watch/stop_request.h: one thread asks another to end, wherever that one waits.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <atomic>

#include "client/store/descriptor.h"

namespace pavex {

class StopRequest {
public:
    StopRequest()
    {
        int ends[2] = {-1, -1};
        if (pipe(ends) != 0)
            return;
        readEnd_ = pavex::Descriptor(ends[0]);
        writeEnd_ = pavex::Descriptor(ends[1]);
        for (const int end : ends)
            (void)fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    // False when no pipe was to be had.
    bool IsUsable() const { return readEnd_.IsOpen(); }
    // From any thread, any number of times.
    void Make()
    {
        made_ = true;
        (void)WriteAll(writeEnd_.Get(), "x");
    }
    bool IsMade() const { return made_; }
    // Readable once it is made.
    int Descriptor() const { return readEnd_.Get(); }

private:
    std::atomic<bool> made_{false};
    pavex::Descriptor readEnd_;
    pavex::Descriptor writeEnd_;
};

}  // namespace pavex
