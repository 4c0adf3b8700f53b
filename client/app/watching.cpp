// client/app/watching.cpp: a client that stays reads the watched sources in again.
#include "client/app/watching.h"

#include "client/store/host.h"

namespace pavex {

std::unique_ptr<Watcher> StartWatching()
{
    std::string error;
    std::unique_ptr<Watcher> watcher = Watcher::Start({}, &error);
    if (watcher == nullptr)
        Log("the sources of pavex watch are not read in again: " + error);
    return watcher;
}

}  // namespace pavex
