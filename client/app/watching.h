// client/app/watching.h: a client that stays reads the watched sources in again.
#pragma once

#include <memory>

#include "client/watch/watcher.h"

namespace pavex {

// Starts the watching.  Null when it cannot be had, which the log tells: the client goes on without.
std::unique_ptr<Watcher> StartWatching();

}  // namespace pavex
