// client/watch/low_priority.cpp: work that nobody waits for.
#include "client/watch/low_priority.h"

#include <algorithm>

#ifdef __linux__
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif
#ifdef __APPLE__
#include <pthread/qos.h>
#endif

namespace pavex {

void LowerOwnPriority()
{
#ifdef __linux__
    // Both count for the thread alone here.  A process that was given less keeps it.
    constexpr int kNice = 10;
    constexpr int kIoWhoProcess = 1;
    constexpr int kIoIdle = 3 << 13;
    const auto thread = static_cast<id_t>(syscall(SYS_gettid));
    (void)setpriority(PRIO_PROCESS, thread, std::max(kNice, getpriority(PRIO_PROCESS, thread)));
    (void)syscall(SYS_ioprio_set, kIoWhoProcess, 0, kIoIdle);
#endif
#ifdef __APPLE__
    (void)pthread_set_qos_class_self_np(QOS_CLASS_BACKGROUND, 0);
#endif
}

}  // namespace pavex
