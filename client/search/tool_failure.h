// client/search/tool_failure.h: why one of the search engine's programs did not do its work.
#pragma once

#include <string>

#include "client/search/process.h"

namespace pavex {

// True, with *error in one line, when the program could not be run or failed.
bool DescribeFailure(const std::string& program, const ProcessResult& result, std::string* error);

}  // namespace pavex
