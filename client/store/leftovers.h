// client/store/leftovers.h: names of files that are nobody's once the process that made them is gone.
#pragma once

#include <string>
#include <string_view>

namespace pavex {

// "pavex-tmp-123-": what stands behind the start of such a file's name.  No name that users give to a copy,
// a date behind the old name for instance, looks like it.
std::string MakerMark();
// Removes the user's own regular files in the folder whose names are nameStart, the mark of a process that is
// gone, and anything; nameStart may be empty.  What cannot be looked at or removed stays.
void SweepLeftovers(const std::string& folder, std::string_view nameStart);
// The same beside a file, for names that are the file's own with a dot.
void SweepLeftoversOf(const std::string& path);

}  // namespace pavex
