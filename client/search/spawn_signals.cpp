// client/search/spawn_signals.cpp: how another program meets the signals.
#include "client/search/spawn_signals.h"

#include <csignal>

namespace pavex {

SpawnSignals::SpawnSignals()
{
    constexpr int kEnding[] = {SIGPIPE, SIGINT, SIGQUIT, SIGTERM, SIGHUP};
    sigset_t none;
    sigset_t defaults;
    sigemptyset(&none);
    sigemptyset(&defaults);
    for (const int number : kEnding)
        sigaddset(&defaults, number);
    posix_spawnattr_init(&attributes_);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setsigdefault(&attributes_, &defaults);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
}

}  // namespace pavex
