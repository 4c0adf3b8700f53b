// client/watch/low_priority.h: work that nobody waits for.
#pragma once

namespace pavex {

// Makes the calling thread, for the rest of its life, one that gets the processor and the disk when others leave
// them.  What the system does not allow or have is left out.
void LowerOwnPriority();

}  // namespace pavex
