// client/app/indexing_state.h: whether anything is indexed at all.
#pragma once

#include <string>
#include <vector>

#include "client/app/slots.h"

namespace pavex {

// Why nothing is indexed, a clause; empty when it is.
std::string WhyNothingIsIndexed(const std::vector<Slot>& slots);

// The same with what to do about it, when there is no metafile: "indexing is switched off in the settings; index with:
// COMMANDS".
std::string HowToIndex(const std::vector<Slot>& slots);

}  // namespace pavex
