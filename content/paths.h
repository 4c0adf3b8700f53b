// content/paths.h: file paths in the store's character set.
#pragma once

#include "platform/store.h"

constexpr size_t kPathBytes = 256;  // of every path the store takes, terminator included

// True for a path that begins with "/", or that has a ":" anywhere (a volume comes before it).
bool MyPathIsAbsolute(const char* path);
// Joins directory and file name into path[kPathBytes], terminated, at most 255 bytes, cut between
// characters.  A "/" goes between them unless the directory is empty or ends in one, or the file name
// begins with one.  path may be the directory itself.  Returns the length.
WORD MyPathConstruct(const char* directory, const char* file, char* path);
