// client/check/check.h: databases, progress records and metafiles, held against each other.
#pragma once

#include <string>

#include "client/check/findings.h"
#include "client/check/repair.h"

namespace pavex {

// Checks everything of the current home.  What is found is in the report; with a repair that is wanted, it is put
// right where that can be done.  While somebody else indexes, only what no running pass can be the cause of is found.
//   metadata  the folder of metafiles.
void CheckHome(const std::string& metadata, Repair* repair, CheckReport* report);

}  // namespace pavex
