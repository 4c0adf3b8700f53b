// client/store/path.h: from the paths that users and settings name to files of this machine.
#pragma once

#include <string>
#include <string_view>

#include "platform/store.h"

namespace pavex {

// Two slashes before a name start a server part; three or more are a clumsy root.
bool IsOnServer(std::string_view path);

// The native path of a database: `scsPath` itself when it is absolute, else inside the data directory.
// 789 for a path with a server part ("//server/folder/file.vlt"): no server is to be had; 591 for a
// malformed one; 259 for an empty one.  *native is only written on success.
STATUS ResolvePath(const char* scsPath, std::string* native);

}  // namespace pavex
