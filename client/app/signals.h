// client/app/signals.h: waiting for the user's Ctrl-C and the system's request to end.
#pragma once

namespace pavex {

// Blocks SIGINT and SIGTERM on the calling thread and on those it starts from now on, so that they arrive
// in WaitForSignal alone.
void HoldSignals();
// True when one of them arrived; false after the time.
bool WaitForSignal(int milliseconds);

}  // namespace pavex
