// client/app/log_failures.h: what the log tells of failed indexing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pavex {

// The last entries of the log's end that tell of a failure with a database or one of its notes, oldest first.
//   database  as the settings name it.
std::vector<std::string> LastFailures(const std::string& database, uint32_t note);

}  // namespace pavex
