// content/formula_result.cpp: what a formula came to, as one line of text.
#include "content/formula_result.h"

#include <algorithm>
#include <cstring>

#include "content/item_text.h"
#include "content/scs_text.h"
#include "content/value_text.h"

namespace {

constexpr size_t kNumberBytes = 40 + 1;
constexpr size_t kTimeBytes = 80 + 1;
constexpr size_t kRangeHeaderBytes = 2 * sizeof(WORD);  // list count, range count

WORD CopyText(const char* text, size_t length, char* buffer, WORD size)
{
    const size_t fitting = std::min(length, size - size_t{1});
    const size_t whole = fitting == length ? length : WholeScsBytes(text, fitting);
    std::memcpy(buffer, text, whole);
    BreaksToBlanks(buffer, static_cast<WORD>(whole));
    buffer[whole] = '\0';
    return static_cast<WORD>(whole);
}

// The first value of a number or time, or of a list of them; false when there is none.
template <typename Value> bool FirstValue(bool range, const char* content, size_t bytes, Value* value)
{
    if (range) {
        if (bytes < kRangeHeaderBytes)
            return false;
        content += kRangeHeaderBytes;
        bytes -= kRangeHeaderBytes;
    }
    if (bytes < sizeof *value)
        return false;
    std::memcpy(value, content, sizeof *value);
    return true;
}

WORD NumberText(bool range, const char* content, size_t bytes, char* buffer, WORD size)
{
    double number = 0;
    char text[kNumberBytes];
    WORD length = 0;
    if (!FirstValue(range, content, bytes, &number) ||
        ConvertFLOATToText(nullptr, nullptr, &number, text, sizeof text, &length) != kStatusOk)
        return 0;
    return CopyText(text, length, buffer, size);
}

WORD TimeText(bool range, const char* content, size_t bytes, char* buffer, WORD size)
{
    TIMEDATE time{};
    char text[kTimeBytes];
    WORD length = 0;
    if (!FirstValue(range, content, bytes, &time) ||
        ConvertTIMEDATEToText(nullptr, nullptr, &time, text, sizeof text, &length) != kStatusOk)
        return 0;
    return CopyText(text, length, buffer, size);
}

}  // namespace

WORD FormulaResultText(const void* result, DWORD resultBytes, char* buffer, WORD size)
{
    if (size == 0)
        return 0;
    buffer[0] = '\0';
    if (result == nullptr || resultBytes < sizeof(WORD))
        return 0;
    const WORD type = WordAt(static_cast<const char*>(result));
    const char* content = static_cast<const char*>(result) + sizeof(WORD);
    const size_t bytes = resultBytes - sizeof(WORD);
    switch (type) {
    case kTypeNumber:
    case kTypeNumberRange:
        return NumberText(type == kTypeNumberRange, content, bytes, buffer, size);
    case kTypeTime:
    case kTypeTimeRange:
        return TimeText(type == kTypeTimeRange, content, bytes, buffer, size);
    case kTypeTextList:
        return JoinTextValue(type, content, bytes, buffer, size, kJoinComma);
    case kTypeText:
        return CopyText(content, bytes, buffer, size);
    default:  // rich text, formulas and whatever else a formula may come to have no title in them
        return 0;
    }
}
