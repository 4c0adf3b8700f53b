// addin/loop.cpp: sleep a period, make a cycle over the slots, again.
// The engine must never compete with the user: low priority while it waits, no work on battery, and every
// request is noticed within a second.
#include "addin/loop.h"

#include <algorithm>

#include "addin/lifecycle.h"
#include "addin/pass.h"
#include "platform/store.h"
#include "settings/power.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "strings/string_ids.h"

int32_t iCurrentStart = 0;

namespace {

bool StopFlagSet()
{
    return bStopAndReset != 0 || bShutDownThread != 0;
}

void LogWhenDebugging(DWORD id)
{
    if (IsDebug())
        LogEvent(id, 0, 0);
}

int32_t SlotAfter(int32_t slot)
{
    return slot == kDatabaseSlots - 1 ? 0 : slot + 1;
}

struct Walk {
    bool ended;        // by a stop flag or for want of mains power
    int32_t lastSlot;  // the slot it ended at: the last one handed to a pass, or the first
};

// Visits the 15 slots once, from iCurrentStart round to the slot before it.
Walk WalkSlots()
{
    int32_t slot = iCurrentStart;
    int32_t last = slot;
    for (int visited = 0; visited < kDatabaseSlots; ++visited) {
        if (StopFlagSet() || !IsPowerSourceConnected())
            return {true, last};
        IndexFile(slot, false);
        last = slot;
        slot = SlotAfter(slot);
    }
    return {false, last};
}

// Successive cycles begin with different databases; an interrupted one continues with the next.
void ChooseNextStart(int32_t lastSlot)
{
    if (StopFlagSet()) {
        iCurrentStart = SlotAfter(lastSlot);
        return;
    }
    for (int advances = 0; advances < kDatabaseSlots; ++advances) {
        iCurrentStart = SlotAfter(iCurrentStart);
        if (GetDbPath(iCurrentStart, nullptr, 0))
            return;
    }
}

void RunCycle()
{
    if (bStopAndReset != 0) {
        LogWhenDebugging(kLogProgressReset);
        bStopAndReset = 0;
        ForgetAllProgress();
    }
    const Walk walk = WalkSlots();
    if (!StopFlagSet() && bStartSoon == 0 && IsPowerSourceConnected())
        IndexHistory();
    ChooseNextStart(walk.lastSlot);
}

void RunCycleIfEnabled()
{
    if (!IsEnabled())
        LogWhenDebugging(kLogIndexingOff);
    else if (static_cast<int16_t>(GetGoogleStatus()) >= 0)
        LogWhenDebugging(kLogIndexUnavailable);
    else
        RunCycle();
}

bool RequestEndsWait(bool inPass)
{
    return bShutDownThread != 0 || (inPass ? bStopAndReset != 0 : bStartSoon != 0);
}

}  // namespace

void IndexingLoop()
{
    uint32_t period = GetIndexingFreq() * 60000;
    if (period == 0)
        period = kDefaultPeriodMs;
    LogWhenDebugging(kLogLoop);

    uint32_t wait = period;
    while (true) {
        SleepForMilli(wait, false);
        bStartSoon = 0;
        dwIdleDelay = 0;
        if (bShutDownThread != 0)
            break;
        if (!AddInShouldTerminate())
            RunCycleIfEnabled();
        if (bShutDownThread != 0 || AddInShouldTerminate())
            break;
        const uint32_t idle = dwIdleDelay;
        wait = idle >= 1 && idle <= period ? idle : period;
    }
    LogWhenDebugging(kLogLoop);
}

void SleepForMilli(uint32_t milliseconds, bool inPass)
{
    const DWORD start = OSGetSystemTimer();
    const uint32_t limit = std::min(milliseconds, kLongestWaitMs);
    OSSetThreadPriority(-1);
    while (OSGetSystemTimer() - start < limit && !RequestEndsWait(inPass)) {
        if (!inPass) {
            IndexHistory();
            OSSetThreadPriority(-1);  // a history pass ends at normal priority
        }
        if (IsDebugLots())
            LogEvent(kLogPoll, 0, 0);
        const DWORD elapsed = OSGetSystemTimer() - start;
        if (elapsed < limit)
            OSDelayThread(std::min(kPollMs, limit - elapsed));
    }
    OSSetThreadPriority(0);
}

void IndexHistory()
{
    if (StopFlagSet() || OSGetSystemTimer() - dwHistoryCount < kHistoryIntervalMs)
        return;
    if (IsIndexingHistory())
        IndexFile(GetHistoryIndex(), true);
    dwHistoryCount = OSGetSystemTimer();
}

void EnsureIdle()
{
    OSSetThreadPriority(-1);
    if (!StopFlagSet() && bStartSoon == 0)
        OSPreempt();
    OSSetThreadPriority(0);
}
