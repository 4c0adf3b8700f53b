// settings/power.cpp: whether the machine runs on mains power.
// Every doubt counts as mains: a machine that cannot say must still be indexed.
#include "settings/power.h"

#include "platform/foundation.h"
#include "platform/owner.h"

namespace {

bool IsPresent(CFDictionaryRef source)
{
    const void* const present = CFDictionaryGetValue(source, CFSTR(kIOPSIsPresentKey));
    return present != nullptr && CFBooleanGetValue(static_cast<CFBooleanRef>(present));
}

bool IsOnMains(CFDictionaryRef source)
{
    const void* const state = CFDictionaryGetValue(source, CFSTR(kIOPSPowerSourceStateKey));
    return state != nullptr && CFEqual(state, CFSTR(kIOPSACPowerValue));
}

}  // namespace

bool IsPowerSourceConnected()
{
    const CFOwner<CFTypeRef> sources(IOPSCopyPowerSourcesInfo());
    if (sources.Get() == nullptr)
        return true;
    const CFOwner<CFArrayRef> list(IOPSCopyPowerSourcesList(sources.Get()));
    if (list.Get() == nullptr)
        return true;
    for (CFIndex i = 0; i < CFArrayGetCount(list.Get()); ++i) {
        const CFDictionaryRef source =
            IOPSGetPowerSourceDescription(sources.Get(), CFArrayGetValueAtIndex(list.Get(), i));
        if (source == nullptr)
            return true;
        if (IsPresent(source))
            return IsOnMains(source);  // the first one that is there decides
    }
    return true;
}
