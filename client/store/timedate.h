// client/store/timedate.h: the store's time stamp for the client's own code.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/store.h"

namespace pavex {

constexpr uint32_t kNoTimeOfDay = 0xFFFFFFFF;
constexpr uint32_t kNoDate = 0xFFFFFFFF;

// Hundredths of a second since the minimum time; orders whole times.
uint64_t HundredthsOf(const TIMEDATE& time);
TIMEDATE TimeFromHundredths(uint64_t hundredths);

// Seconds and hundredths since 1970-01-01 GMT.
TIMEDATE TimeFromUnix(int64_t seconds, int hundredths = 0);
std::optional<int64_t> UnixFromTime(const TIMEDATE& time);  // none without a date; midnight without a time of day

// The JSON and command-line form: "2007-03-05T14:00:00Z", hundredths as ".25" when there are any, a
// bare "2007-03-05" for a date without a time of day.  Parse also takes an offset ("+01:00").
std::string IsoFromTime(const TIMEDATE& time);
std::optional<TIMEDATE> TimeFromIso(std::string_view text);

bool operator==(const UNID& a, const UNID& b);
std::string HexFromId(const TIMEDATE& id);  // 16 upper-case digits, as "%H" prints it
std::optional<TIMEDATE> IdFromHex(std::string_view hex);
std::string HexFromUnid(const UNID& unid);  // 32 digits: file part, note part
std::optional<UNID> UnidFromHex(std::string_view hex);

}  // namespace pavex
