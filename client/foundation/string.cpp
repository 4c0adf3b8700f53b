// client/foundation/string.cpp: making, changing, reading and comparing strings.
#include "client/foundation/string.h"

#include <unicode/stringoptions.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <map>
#include <mutex>

#include "client/foundation/unicode.h"

using namespace pavex::cf;

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// The part of the range that lies in the text: a range beyond it is a caller's mistake, but must not
// become a read outside.
std::u16string_view Slice(std::u16string_view text, CFRange range)
{
    const auto length = static_cast<CFIndex>(text.size());
    if (range.location < 0 || range.location > length || range.length <= 0)
        return {};
    return text.substr(static_cast<size_t>(range.location), static_cast<size_t>(range.length));
}

int32_t ClampedLength(std::u16string_view text)
{
    return static_cast<int32_t>(std::min<size_t>(text.size(), INT32_MAX));
}

CFComparisonResult ResultOf(int order)
{
    return order < 0 ? kCFCompareLessThan : order > 0 ? kCFCompareGreaterThan : kCFCompareEqualTo;
}

}  // namespace

extern "C" {

CFStringRef PavexConstantString(const char* utf8)
{
    // Never freed, so that constants outlive everything that may still use them while the process ends.
    static std::mutex& mutex = *new std::mutex;
    static auto& constants = *new std::map<std::string, const String*, std::less<>>;
    const std::lock_guard lock(mutex);
    auto found = constants.find(std::string_view(utf8));
    if (found == constants.end()) {
        std::u16string text;
        if (DecodeUtf8(utf8, &text) != std::strlen(utf8))
            Trap();
        found = constants.emplace(utf8, New<String>(std::move(text), Lifetime::Constant)).first;
    }
    return ToRef<CFStringRef>(found->second);
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar* chars, CFIndex numChars)
{
    if (numChars < 0)
        return nullptr;
    std::u16string text(static_cast<size_t>(numChars), u'\0');
    if (numChars > 0)
        std::memcpy(text.data(), chars, text.size() * sizeof(char16_t));
    return ToRef<CFStringRef>(New<String>(std::move(text)));
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* cStr, CFStringEncoding encoding)
{
    if (encoding != kCFStringEncodingUTF8)
        return nullptr;
    std::string_view bytes(cStr);
    if (bytes.starts_with(kByteOrderMark))
        bytes.remove_prefix(kByteOrderMark.size());
    std::u16string text;
    if (DecodeUtf8(bytes, &text) != bytes.size())
        return nullptr;
    return ToRef<CFStringRef>(New<String>(std::move(text)));
}

CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef, CFIndex, CFStringRef theString)
{
    return ToMutableRef<CFMutableStringRef>(New<String>(std::u16string(TextOf(theString))));
}

CFIndex CFStringFindAndReplace(CFMutableStringRef theString, CFStringRef stringToFind, CFStringRef replacementString,
                               CFRange rangeToSearch, CFStringCompareFlags)
{
    auto& string = AsMutable<String>(theString);
    const std::u16string_view text = string.Text();
    const std::u16string_view wanted = TextOf(stringToFind);
    const std::u16string_view replacement = TextOf(replacementString);
    const std::u16string_view searched = Slice(text, rangeToSearch);
    if (wanted.empty() || searched.empty())
        return 0;
    const auto start = static_cast<size_t>(rangeToSearch.location);
    std::u16string result;
    CFIndex count = 0;
    size_t copied = 0;  // of the text
    for (size_t match = searched.find(wanted); match != std::u16string_view::npos;
         match = searched.find(wanted, match + wanted.size())) {
        result.append(text.substr(copied, start + match - copied)).append(replacement);
        copied = start + match + wanted.size();
        ++count;
    }
    if (count == 0)
        return 0;
    result.append(text.substr(copied));
    string.SetText(std::move(result));
    return count;
}

CFIndex CFStringGetLength(CFStringRef theString)
{
    return static_cast<CFIndex>(TextOf(theString).size());
}

void CFStringGetCharacters(CFStringRef theString, CFRange range, UniChar* buffer)
{
    const std::u16string_view slice = Slice(TextOf(theString), range);
    if (!slice.empty())
        std::memcpy(buffer, slice.data(), slice.size() * sizeof(char16_t));
}

CFIndex CFStringGetBytes(CFStringRef theString, CFRange range, CFStringEncoding encoding, UInt8, Boolean, UInt8* buffer,
                         CFIndex maxBufLen, CFIndex* usedBufLen)
{
    const std::u16string_view slice = Slice(TextOf(theString), range);
    size_t converted = 0, used = 0;
    while (encoding == kCFStringEncodingUTF8 && converted < slice.size()) {
        size_t next = converted;
        const char32_t c = NextCodePoint(slice, &next);
        const size_t length = Utf8Length(c);
        if (IsSurrogate(c) || (buffer && static_cast<CFIndex>(used + length) > maxBufLen))
            break;
        if (buffer) {
            char bytes[4];
            std::memcpy(buffer + used, bytes, PutUtf8(c, bytes));
        }
        used += length;
        converted = next;
    }
    if (usedBufLen)
        *usedBufLen = static_cast<CFIndex>(used);
    return static_cast<CFIndex>(converted);
}

CFComparisonResult CFStringCompare(CFStringRef theString1, CFStringRef theString2, CFStringCompareFlags compareOptions)
{
    const std::u16string_view first = TextOf(theString1);
    const std::u16string_view second = TextOf(theString2);
    if (!(compareOptions & kCFCompareCaseInsensitive))
        return ResultOf(first.compare(second));
    // The default folding, without the Turkish rules: the user's locale must not change what is equal.
    UErrorCode status = U_ZERO_ERROR;
    return ResultOf(u_strCaseCompare(first.data(), ClampedLength(first), second.data(), ClampedLength(second),
                                     U_FOLD_CASE_DEFAULT | U_COMPARE_CODE_POINT_ORDER, &status));
}

CFStringEncoding CFStringGetSystemEncoding(void)
{
    return kCFStringEncodingUTF8;
}

Boolean CFStringGetCString(CFStringRef theString, char* buffer, CFIndex bufferSize, CFStringEncoding encoding)
{
    if (bufferSize <= 0)
        return 0;
    const CFIndex length = CFStringGetLength(theString);
    CFIndex used = 0;
    const CFIndex converted = CFStringGetBytes(theString, CFRangeMake(0, length), encoding, 0, 0,
                                               reinterpret_cast<UInt8*>(buffer), bufferSize - 1, &used);
    const bool whole = converted == length && encoding == kCFStringEncodingUTF8;
    buffer[whole ? used : 0] = '\0';
    return whole;
}

}  // extern "C"
