// dialog/status_display.h: the settings dialog's three status lines.
#pragma once

// Sets, shows and hides the line of the selected database, the overall line and the current activity, from
// the run statistics and the saved progress as they are now.  Keeps nothing between calls.  Runs on the
// client's main thread, while the indexing thread may be counting.
void PutStatus(unsigned long window);
