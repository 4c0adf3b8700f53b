// client/import/vcard_date.h: dates as cards write them, with and without separators.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "client/store/timedate.h"

namespace pavex {

// The day of a whole date ("19850412", "1985-04-12", with or without a time of day behind it), as a time without
// a time of day.  Nothing for a date without its year, month or day ("--0412", "1985-04"), one that does
// not exist, one before the year 1000, and other text.
std::optional<TIMEDATE> ReadCardDay(std::string_view text);

// A date with or without time of day in the form "YYYYMMDDTHHMMSSZ": moved to GMT, which is also what a time without
// zone is taken for; without time of day midnight.  Empty when it is none.
std::string CompactCardTime(std::string_view text);
// The time that CompactCardTime writes.
std::optional<TIMEDATE> TimeOfCompact(const std::string& compact);

}  // namespace pavex
