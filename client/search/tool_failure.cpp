// client/search/tool_failure.cpp: why one of the search engine's programs did not do its work.
#include "client/search/tool_failure.h"

#include <cerrno>
#include <cstring>

namespace pavex {

bool DescribeFailure(const std::string& program, const ProcessResult& result, std::string* error)
{
    if (result.error == ENOENT)
        *error =
            "the search engine Recoll is not installed (" + program + " is missing); install the package recollcmd";
    else if (result.error != 0)
        *error = "cannot run " + program + ": " + std::strerror(result.error);
    else if (result.exit != 0)
        *error = program + " failed (exit status " + std::to_string(result.exit) +
                 "): " + result.output.substr(0, result.output.find('\n'));
    return result.error != 0 || result.exit != 0;
}

}  // namespace pavex
