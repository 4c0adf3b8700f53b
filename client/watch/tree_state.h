// client/watch/tree_state.h: whether a source changed that tells nothing of its changes: names, sizes and times.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace pavex {

// One number for all that the system says of the files of a source without opening them: another number, another
// state.
//   path  canonical
//   goOn  asked at each folder; false ends it at once.
uint64_t TreeStateOf(const std::string& path, const std::function<bool()>& goOn);

}  // namespace pavex
