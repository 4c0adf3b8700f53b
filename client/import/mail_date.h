// client/import/mail_date.h: dates as mail writes them: the Date field, From_ lines, Received fields.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace pavex {

// Seconds since 1970-01-01 GMT of a date in the Internet form ("Mon, 5 Mar 2007 14:00:00 +0100"), that of
// From_ lines ("Mon Mar  5 14:00:00 2007", taken as GMT without a zone) or ISO's; also with two-digit years,
// names of zones, comments, and parts in unusual order.  Nothing when day, month, year or time of day is
// missing or impossible, the zone is beyond 14 hours, or the year is not in 1900 to 2199: such a date says
// when the sender's clock was broken, not when the message was written.
std::optional<int64_t> ReadMailDate(std::string_view text);

// Offset of a named zone in minutes east of GMT; nothing for a name that means several or none.
std::optional<int> ZoneMinutes(std::string_view name);

// The date in a From_ line ("From ann@x.org Mon Mar  5 14:00:00 2007").  Nothing when it does not look like
// one: a sender and a date are what sets it apart from a sentence that begins with "From ".
std::optional<int64_t> ReadFromLine(std::string_view line);

}  // namespace pavex
