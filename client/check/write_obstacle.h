// client/check/write_obstacle.h: what keeps the add-in from writing into a folder.
// A metafile that cannot be written is passed over in silence; what stands in the way is looked for afterwards.
#pragma once

#include <string>

namespace pavex {

// The file or folder that stands in the way, and why, as in "/c/Metadata: Permission denied"; empty when nothing
// does.  A folder that is not there can be written into when it can be made.
std::string FindWriteObstacle(const std::string& folder);

}  // namespace pavex
