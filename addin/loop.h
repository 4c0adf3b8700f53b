// addin/loop.h: the indexing thread's schedule.  All but iCurrentStart's definition runs on that thread.
#pragma once

#include <cstdint>

extern int32_t iCurrentStart;  // slot, 0..14, at which the next cycle begins

constexpr uint32_t kDefaultPeriodMs = 300000;
constexpr uint32_t kHistoryIntervalMs = 60000;
constexpr uint32_t kPollMs = 1000;
constexpr uint32_t kLongestWaitMs = 6000000;

// Cycle after cycle until the shutdown flag is set or the client ends.
void IndexingLoop();
// Waits at low priority, at most kLongestWaitMs, polling the requests at least once a second.
// inPass: also ends at a reset; otherwise also at start-soon, and each poll makes the history check.
void SleepForMilli(uint32_t milliseconds, bool inPass);
// The history pass, when a minute has passed since the last.
void IndexHistory();
// Gives the processor away once.
void EnsureIdle();
