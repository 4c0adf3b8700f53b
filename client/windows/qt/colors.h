// client/windows/qt/colors.h: light or dark windows, where the user has chosen.
#pragma once

#include "client/windows/window_plugin.h"

namespace pavex {

// Gives the application the colours; those of the system stay as they are.
void UseColors(WindowColors colors);

}  // namespace pavex
