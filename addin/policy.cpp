// addin/policy.cpp: the administrator's say on whether the add-in may run.
#include "addin/lifecycle.h"
#include "platform/store.h"

namespace {

constexpr char kSwitchField[] = "GDSIndexEnabled";
constexpr size_t kUserNameBytes = 256;

// A policy that cannot be had locks nothing.
bool PolicyLocksSwitch()
{
    char user[kUserNameBytes] = "";
    if (SECKFMUserInfo(1, user, nullptr) != 0)
        return false;
    NOTEHANDLE policy = 0;
    if (NAMEGetPolicy(user, 0, 0, "$Users", 0, 0, "DesktopSets", 0, 0, &policy) != 0 || policy == 0)
        return false;
    const bool locked = NAMEDPIsFieldLocked(policy, kSwitchField);
    VLTNoteClose(policy);
    return locked;
}

}  // namespace

bool ShouldStartPlugin()
{
    // The policy lookup belongs to the client's main thread; the indexing thread goes by its last answer.
    static std::atomic<uint8_t> ret{0};
    if (OSIsClientMainThread() && PolicyLocksSwitch())
        ret = 1;
    return ret == 0;
}
