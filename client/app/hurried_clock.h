// client/app/hurried_clock.h: a clock on which the waits between cycles pass quickly.
// One whole cycle without waiting a period for it: while the add-in's thread waits with no database open,
// it is between two passes, and the system timer runs ahead instead.  Within a pass time is real.
#pragma once

#include <atomic>

#include "client/store/clock.h"

namespace pavex {

class HurriedClock : public Clock {
public:
    // idleMs: waiting between passes after which a whole cycle and a history pass have certainly been made.
    explicit HurriedClock(uint64_t idleMs) : idleEnough_(idleMs) {}

    uint64_t NowHundredths() override;
    uint64_t TimerMilliseconds() override;
    void Delay(uint32_t milliseconds) override;
    void Preempt() override;

    bool CycleDone() const { return idle_ >= idleEnough_; }
    // Delays end at once from now on: nobody waits for the add-in's last poll.
    void EndDelays() { ended_ = true; }

private:
    const uint64_t idleEnough_;
    std::atomic<bool> ended_{false};
    std::atomic<uint64_t> idle_{0};  // milliseconds waited between passes, skipped all of them
};

}  // namespace pavex
