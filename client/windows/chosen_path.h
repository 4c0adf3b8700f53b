// client/windows/chosen_path.h: a typed file name as the file a chooser would have answered.
#pragma once

#include <string>

namespace pavex {

// An absolute native path, UTF-8: `typed` in the working folder when there is such a file, else in the data
// directory.  An absolute path, or one with a server part ("//server/..."), stays as it is.
std::string ChosenPath(const std::string& typed);

}  // namespace pavex
