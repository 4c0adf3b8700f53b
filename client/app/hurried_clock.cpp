// client/app/hurried_clock.cpp: a clock on which the waits between cycles pass quickly.
#include "client/app/hurried_clock.h"

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
    if (CycleDone() || OpenDatabasesOfThread() != 0)
        SystemClock().Delay(milliseconds);
    else
        idle_ += milliseconds;
}

void HurriedClock::Preempt()
{
    SystemClock().Preempt();
}

}  // namespace pavex
