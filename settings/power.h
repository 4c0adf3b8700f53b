// settings/power.h: whether the machine runs on mains power.
#pragma once

// False only when the first power source that is present is known to run on battery.
bool IsPowerSourceConnected();
