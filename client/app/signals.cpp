// client/app/signals.cpp: waiting for the user's Ctrl-C and the system's request to end.
#include "client/app/signals.h"

#include <sys/signalfd.h>

#include <csignal>
#include <ctime>

namespace pavex {

namespace {

sigset_t EndingSignals()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

}  // namespace

void HoldSignals()
{
    const sigset_t set = EndingSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

bool WaitForSignal(int milliseconds)
{
    const sigset_t set = EndingSignals();
    const timespec time{milliseconds / 1000, (milliseconds % 1000) * 1000000L};
    return sigtimedwait(&set, nullptr, &time) > 0;
}

int OpenSignalDescriptor()
{
    const sigset_t set = EndingSignals();
    return signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
}

}  // namespace pavex
