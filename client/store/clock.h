// client/store/clock.h: the one source of time and waiting.
// The store's time, timer and delay calls go through the current clock, which tests replace by a
// virtual one and the `index` command by one that lets the waits between cycles pass quickly.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

#include "platform/store.h"

namespace pavex {

class Clock {
public:
    virtual ~Clock() = default;
    virtual uint64_t NowHundredths() = 0;      // hundredths since 1970-01-01 GMT
    virtual uint64_t TimerMilliseconds() = 0;  // steady; OSGetSystemTimer is its low 32 bits
    virtual void Delay(uint32_t milliseconds) = 0;
    virtual void Preempt() = 0;
};

// The machine's own clock.
Clock& SystemClock();
// The clock in use; SetClock(nullptr) goes back to the machine's.  Borrowed: it must outlive its use.
Clock& CurrentClock();
void SetClock(Clock* clock);

// Time that stands still until somebody waits: a delay moves it forward at once and runs, on the
// waiting thread and each at its exact moment, the actions that fall due.
class VirtualClock : public Clock {
public:
    // start: hundredths since 1970; timer: milliseconds, to start just before a wrap for instance.
    explicit VirtualClock(uint64_t startHundredths, uint64_t timerMilliseconds = 0);
    uint64_t NowHundredths() override;
    uint64_t TimerMilliseconds() override;
    void Delay(uint32_t milliseconds) override;
    void Preempt() override;

    // Runs `action` when the timer reaches the given value (of the unwrapped timer).
    void At(uint64_t timerMilliseconds, std::function<void()> action);
    void Advance(uint32_t milliseconds);  // as Delay, not counted as one
    uint64_t Delays() const;              // delays so far
    uint64_t Preempts() const;

private:
    mutable std::mutex mutex_;
    uint64_t start_;
    uint64_t timerStart_;
    uint64_t timer_;
    uint64_t delays_ = 0;
    uint64_t preempts_ = 0;
    std::multimap<uint64_t, std::function<void()>> actions_;
};

}  // namespace pavex
