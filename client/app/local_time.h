// client/app/local_time.h: times as they are where the user is.
#pragma once

#include <cstdint>
#include <string>

namespace pavex {

// "2007-03-05 14:00", of seconds since 1970.
std::string LocalTimeText(int64_t unixSeconds);

}  // namespace pavex
