// client/search/spawn_signals.h: how another program meets the signals: as if a shell had started it.
#pragma once

#include <spawn.h>

namespace pavex {

// For posix_spawn: nothing is held back from the program, and none of the signals that this one may ignore is ignored.
class SpawnSignals {
public:
    SpawnSignals();
    ~SpawnSignals() { posix_spawnattr_destroy(&attributes_); }
    SpawnSignals(const SpawnSignals&) = delete;
    SpawnSignals& operator=(const SpawnSignals&) = delete;
    const posix_spawnattr_t* Get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_;
};

}  // namespace pavex
