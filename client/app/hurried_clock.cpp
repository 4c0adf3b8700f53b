// client/app/hurried_clock.cpp: a clock on which the waits between cycles pass quickly.
#include "client/app/hurried_clock.h"

#include <algorithm>

#include "client/store/host.h"

namespace pavex {

uint64_t HurriedClock::NowHundredths()
{
    return SystemClock().NowHundredths();
}

uint64_t HurriedClock::TimerMilliseconds()
{
    return SystemClock().TimerMilliseconds() + idle_;
}

void HurriedClock::Delay(uint32_t milliseconds)
{
    if (!CycleDone() && OpenDatabasesOfThread() == 0) {
        idle_ += milliseconds;
        return;
    }
    constexpr uint32_t kSliceMs = 20;
    for (uint32_t left = milliseconds; left != 0 && !ended_;) {
        const uint32_t slice = std::min(left, kSliceMs);
        SystemClock().Delay(slice);
        left -= slice;
    }
}

void HurriedClock::Preempt()
{
    SystemClock().Preempt();
}

}  // namespace pavex
