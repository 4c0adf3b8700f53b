// client/app/indexing_state.cpp: whether anything is indexed at all.
#include "client/app/indexing_state.h"

#include "client/app/policy_check.h"
#include "platform/store.h"

namespace pavex {

std::string WhyNothingIsIndexed(const std::vector<Slot>& slots)
{
    if (PolicyLocksIndexing())
        return "the administrator's policy locks indexing off";
    if (OSGetEnvironmentLong("GDSIndexEnabled") == 0)
        return "indexing is switched off in the settings";
    bool anyDatabase = false;
    for (const Slot& slot : slots)
        anyDatabase = anyDatabase || slot.number != kHistorySlot;
    if (!anyDatabase)
        return "no databases are chosen";
    return {};
}

}  // namespace pavex
