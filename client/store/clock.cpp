// client/store/clock.cpp: the machine's clock, the virtual one, and the store's calls on the one in use.
#include "client/store/clock.h"

#include <sched.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <ctime>

namespace pavex {

namespace {

class MachineClock : public Clock {
public:
    uint64_t NowHundredths() override
    {
        const timespec now = Read(CLOCK_REALTIME);
        return static_cast<uint64_t>(now.tv_sec) * 100 + static_cast<uint64_t>(now.tv_nsec) / 10000000;
    }
    uint64_t TimerMilliseconds() override
    {
        const timespec now = Read(CLOCK_MONOTONIC);
        return static_cast<uint64_t>(now.tv_sec) * 1000 + static_cast<uint64_t>(now.tv_nsec) / 1000000;
    }
    void Delay(uint32_t milliseconds) override
    {
        timespec left{static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1000000};
        while (nanosleep(&left, &left) != 0 && errno == EINTR) {
        }
    }
    void Preempt() override { sched_yield(); }

private:
    static timespec Read(clockid_t id)
    {
        timespec now{};
        clock_gettime(id, &now);  // fails only for clocks that do not exist
        return now;
    }
};

std::atomic<Clock*> clockInUse{nullptr};  // null: the machine's; written by SetClock

}  // namespace

Clock& SystemClock()
{
    static MachineClock clock;
    return clock;
}

Clock& CurrentClock()
{
    Clock* const clock = clockInUse.load();
    return clock == nullptr ? SystemClock() : *clock;
}

void SetClock(Clock* clock)
{
    clockInUse = clock;
}

VirtualClock::VirtualClock(uint64_t startHundredths, uint64_t timerMilliseconds)
    : start_(startHundredths), timerStart_(timerMilliseconds), timer_(timerMilliseconds)
{
}

uint64_t VirtualClock::NowHundredths()
{
    const std::lock_guard lock(mutex_);
    return start_ + (timer_ - timerStart_) / 10;
}

uint64_t VirtualClock::TimerMilliseconds()
{
    const std::lock_guard lock(mutex_);
    return timer_;
}

void VirtualClock::Delay(uint32_t milliseconds)
{
    {
        const std::lock_guard lock(mutex_);
        ++delays_;
    }
    Advance(milliseconds);
}

void VirtualClock::Preempt()
{
    const std::lock_guard lock(mutex_);
    ++preempts_;
}

void VirtualClock::At(uint64_t timerMilliseconds, std::function<void()> action)
{
    const std::lock_guard lock(mutex_);
    actions_.emplace(timerMilliseconds, std::move(action));
}

void VirtualClock::Advance(uint32_t milliseconds)
{
    std::unique_lock lock(mutex_);
    const uint64_t target = timer_ + milliseconds;
    while (!actions_.empty() && actions_.begin()->first <= target) {
        auto due = actions_.extract(actions_.begin());
        timer_ = std::max(timer_, due.key());
        lock.unlock();  // the action reads the clock and plans further ones
        due.mapped()();
        lock.lock();
    }
    timer_ = std::max(timer_, target);
}

uint64_t VirtualClock::Delays() const
{
    const std::lock_guard lock(mutex_);
    return delays_;
}

uint64_t VirtualClock::Preempts() const
{
    const std::lock_guard lock(mutex_);
    return preempts_;
}

}  // namespace pavex

void OSPreempt(void)
{
    pavex::CurrentClock().Preempt();
}

void OSDelayThread(DWORD milliseconds)
{
    pavex::CurrentClock().Delay(milliseconds);
}

DWORD OSGetSystemTimer(void)
{
    return static_cast<DWORD>(pavex::CurrentClock().TimerMilliseconds());
}
