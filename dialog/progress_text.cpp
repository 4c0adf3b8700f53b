// dialog/progress_text.cpp: how far a pass has come, in words.
// The format comes from a table that translators write; a wrong one must not make snprintf read arguments
// that are not there.
#include "dialog/progress_text.h"

#include <cstdio>
#include <optional>

namespace {

constexpr const char* kBuiltInFormat = "%d of %d notes (%d%%)";
constexpr int kArguments = 3;
constexpr int kMostWidthDigits = 2;

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Steps over one conversion at the start of *text, its '%' already taken.  Its argument's number, 0 for
// the next one; nothing when it is no integer conversion that is allowed.
std::optional<int> TakeConversion(std::string_view* text)
{
    int argument = 0;
    if (text->size() >= 2 && (*text)[1] == '$') {
        argument = (*text)[0] - '0';
        if (argument < 1 || argument > kArguments)
            return std::nullopt;
        text->remove_prefix(2);
    }
    while (!text->empty() && std::string_view("-+ 0'").find(text->front()) != std::string_view::npos)
        text->remove_prefix(1);
    for (int digits = 0; !text->empty() && IsDigit(text->front()); ++digits) {
        if (digits == kMostWidthDigits)
            return std::nullopt;
        text->remove_prefix(1);
    }
    if (text->empty() || std::string_view("diu").find(text->front()) == std::string_view::npos)
        return std::nullopt;
    text->remove_prefix(1);
    return argument;
}

}  // namespace

std::string CutUtf8(std::string_view utf8, size_t maxBytes)
{
    if (utf8.size() <= maxBytes)
        return std::string(utf8);
    size_t end = maxBytes;
    while (end > 0 && (static_cast<unsigned char>(utf8[end]) & 0xC0) == 0x80)
        --end;
    return std::string(utf8.substr(0, end));
}

bool IsProgressFormat(std::string_view format)
{
    int conversions = 0;
    int numbered = 0;
    unsigned int seen = 0;  // a bit a numbered argument
    for (size_t at = format.find('%'); at != std::string_view::npos; at = format.find('%')) {
        format.remove_prefix(at + 1);
        if (!format.empty() && format.front() == '%') {
            format.remove_prefix(1);
            continue;
        }
        const std::optional<int> argument = TakeConversion(&format);
        if (!argument)
            return false;
        ++conversions;
        numbered += *argument != 0;
        seen |= 1U << *argument;
    }
    const bool allNumbered = numbered == kArguments && seen == 0b1110;
    return conversions == kArguments && (numbered == 0 || allNumbered);
}

std::string FormatProgress(const std::string& format, uint32_t processed, uint32_t total)
{
    const auto done = static_cast<int32_t>(processed);
    const int32_t whole = total == 0 ? done : static_cast<int32_t>(total);
    // 64 bits hold the product: more than 21 million notes would overflow 32.
    const int64_t percent = whole == 0 ? 0 : int64_t{done} * 100 / whole;
    const char* checked = IsProgressFormat(format) ? format.c_str() : kBuiltInFormat;
    char text[4 * kStateBytes] = "";  // room beyond the limit, so that the cut falls between characters
    std::snprintf(text, sizeof text, checked, done, whole, static_cast<int>(percent));
    return CutUtf8(text, kStateBytes);
}
