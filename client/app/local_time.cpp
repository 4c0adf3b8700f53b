// client/app/local_time.cpp: times as they are where the user is.
#include "client/app/local_time.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace pavex {

std::string LocalTimeText(int64_t unixSeconds)
{
    const std::time_t time = unixSeconds;
    std::tm parts{};
    std::array<char, 64> text{};
    if (localtime_r(&time, &parts) == nullptr)
        return "no date";
    (void)std::snprintf(text.data(), text.size(), "%04ld-%02d-%02d %02d:%02d", parts.tm_year + 1900L, parts.tm_mon + 1,
                        parts.tm_mday, parts.tm_hour, parts.tm_min);
    return text.data();
}

}  // namespace pavex
