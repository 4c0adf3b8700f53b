// client/app/signals.h: waiting for the user's Ctrl-C and the system's request to end.
#pragma once

namespace pavex {

// Blocks SIGINT and SIGTERM on the calling thread and on those it starts from now on, so that they arrive
// in WaitForSignal alone.
void HoldSignals();
// True when one of them arrived; false after the time.
bool WaitForSignal(int milliseconds);
// A file descriptor that can be read once one of them has arrived; -1 when none can be had.  Owned by the
// caller.  Nothing need be read from it.
int OpenSignalDescriptor();

}  // namespace pavex
