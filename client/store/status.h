// client/store/status.h: statuses from the operating system's errors.
#pragma once

#include "platform/store.h"

namespace pavex {

// The status for a failed file operation, from errno.
STATUS StatusOfErrno(int error);

}  // namespace pavex
