// client/app/policy_check.h: whether the administrator's policy locks the desktop search.
#pragma once

namespace pavex {

bool PolicyLocksIndexing();

}  // namespace pavex
