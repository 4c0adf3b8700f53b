// client/app/policy_check.cpp: whether the administrator's policy locks the desktop search.
#include "client/app/policy_check.h"

#include "platform/store.h"

namespace pavex {

bool PolicyLocksIndexing()
{
    char user[256] = "";
    NOTEHANDLE policy = 0;
    if (SECKFMUserInfo(1, user, nullptr) != 0 ||
        NAMEGetPolicy(user, 0, 0, "$Users", 0, 0, "DesktopSets", 0, 0, &policy) != 0 || policy == 0)
        return false;
    const bool locked = NAMEDPIsFieldLocked(policy, "GDSIndexEnabled");
    VLTNoteClose(policy);
    return locked;
}

}  // namespace pavex
