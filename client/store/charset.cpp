// client/store/charset.cpp: whole-string conversions and cuts of the store's character set.
#include "client/store/charset.h"

#include <algorithm>

#include "client/store/charset_codec.h"

namespace pavex {

namespace {

size_t AsciiPrefix(std::string_view text)
{
    const auto end = std::find_if(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; });
    return static_cast<size_t>(end - text.begin());
}

// Runs of ASCII are the same in both encodings and most of what there is: they are copied whole.
template <typename From, typename To> std::string ConvertBytes(std::string_view source)
{
    std::string result;
    result.reserve(source.size());
    while (!source.empty()) {
        const size_t same = AsciiPrefix(source);
        result.append(source.substr(0, same));
        source.remove_prefix(same);
        if (source.empty())
            break;
        const DecodedCharacter next = From::Decode(source);
        char encoded[To::kMostBytes];
        result.append(encoded, To::Encode(next.character, encoded));
        source.remove_prefix(next.bytes);
    }
    return result;
}

bool IsContinuation(std::string_view text, size_t index)
{
    return (ByteAt(text, index) & 0xC0) == 0x80;
}

// Start of the byte sequence that the byte before `end` belongs to; `end` itself when a cut there goes
// through nothing that could be a character.
size_t StartOfCutSequence(std::string_view text, size_t end)
{
    size_t start = end;
    while (start > 0 && end - start < 3 && IsContinuation(text, start))
        --start;
    return start < end && FormOfLead(ByteAt(text, start)).bytes <= end - start ? end : start;
}

bool IsSurrogateAt(std::string_view text, size_t index, uint8_t from, uint8_t to)
{
    return index + 3 <= text.size() && ByteAt(text, index) == 0xED && ByteAt(text, index + 1) >= from &&
           ByteAt(text, index + 1) <= to;
}

}  // namespace

std::string ScsFromUtf8(std::string_view utf8)
{
    return ConvertBytes<Utf8Codec, ScsCodec>(utf8);
}

std::string Utf8FromScs(std::string_view scs)
{
    return ConvertBytes<ScsCodec, Utf8Codec>(scs);
}

std::u16string Utf16FromScs(std::string_view scs)
{
    std::u16string result;
    result.reserve(scs.size());
    while (!scs.empty()) {
        const DecodedCharacter next = ScsCodec::Decode(scs);
        char16_t units[2];
        char bytes[Utf16Codec::kMostBytes];
        const size_t written = Utf16Codec::Encode(next.character, bytes);
        std::memcpy(units, bytes, written);
        result.append(units, written / sizeof(char16_t));
        scs.remove_prefix(next.bytes);
    }
    return result;
}

std::string ScsFromUtf16(std::u16string_view utf16)
{
    std::string result;
    result.reserve(utf16.size());
    for (size_t i = 0; i < utf16.size(); ++i) {
        char32_t character = utf16[i];
        if (IsHighSurrogate(character) && i + 1 < utf16.size() && IsLowSurrogate(utf16[i + 1]))
            character = JoinSurrogates(character, utf16[++i]);
        else if (IsHighSurrogate(character) || IsLowSurrogate(character))
            character = kReplacement;
        char encoded[ScsCodec::kMostBytes];
        result.append(encoded, ScsCodec::Encode(character, encoded));
    }
    return result;
}

size_t ScsPrefix(std::string_view scs, size_t maxBytes)
{
    if (scs.size() <= maxBytes)
        return scs.size();
    size_t end = StartOfCutSequence(scs, maxBytes);
    const bool pairCut = end >= 3 && IsSurrogateAt(scs, end - 3, 0xA0, 0xAF) && IsSurrogateAt(scs, end, 0xB0, 0xBF);
    return pairCut ? end - 3 : end;
}

}  // namespace pavex
