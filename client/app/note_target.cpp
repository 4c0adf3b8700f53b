// client/app/note_target.cpp: which note a user means.
#include "client/app/note_target.h"

#include "client/app/last_search.h"

namespace pavex {

namespace {

bool IsNumber(const std::string& text, size_t mostDigits)
{
    return !text.empty() && text.size() <= mostDigits && text.find_first_not_of("0123456789") == text.npos;
}

}  // namespace

std::optional<std::string> UrlOfTarget(const std::string& target, std::string* error)
{
    constexpr size_t kMostDigits = 6;
    if (!IsNumber(target, kMostDigits))
        return target;
    std::optional<std::string> url = UrlOfLastSearch(std::stoul(target));
    if (!url)
        *error = "the last search has no result " + target;
    return url;
}

std::optional<uint32_t> NoteIdFromText(const std::string& text)
{
    constexpr size_t kMostDigits = 10;
    constexpr unsigned long kMostId = 0x7FFFFFFF;
    if (!IsNumber(text, kMostDigits) || std::stoul(text) > kMostId)
        return std::nullopt;
    return static_cast<uint32_t>(std::stoul(text));
}

}  // namespace pavex
