// client/import/temporary_file.h: room for what must be rewritten before it can be read.
#pragma once

#include "client/store/descriptor.h"

namespace pavex {

// Opens a file without a name, in $TMPDIR or else /tmp, for reading and writing; it goes with its descriptor.
// Empty, with errno set, when that fails.
Descriptor OpenTemporaryFile();

}  // namespace pavex
