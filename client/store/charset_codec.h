// client/store/charset_codec.h: one character at a time, in and out of the store's encodings.
// Decoders look at a non-empty input, take at least one byte and answer U+FFFD for what is malformed: one
// for each maximal part of a broken sequence.  Encoders answer the bytes written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace pavex {

constexpr char32_t kReplacement = 0xFFFD;

struct DecodedCharacter {
    char32_t character;
    size_t bytes;  // taken from the input
};

constexpr bool IsHighSurrogate(char32_t unit)
{
    return (unit & 0xFFFFFC00) == 0xD800;
}
constexpr bool IsLowSurrogate(char32_t unit)
{
    return (unit & 0xFFFFFC00) == 0xDC00;
}
constexpr char32_t JoinSurrogates(char32_t high, char32_t low)
{
    return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

inline uint8_t ByteAt(std::string_view text, size_t index)
{
    return static_cast<uint8_t>(text[index]);
}

// How the bytes after a lead byte go on.  The second byte's range rules out overlong forms.
struct SequenceForm {
    size_t bytes;  // 0: no lead byte
    uint8_t secondFrom, secondTo;
};

constexpr SequenceForm FormOfLead(uint8_t lead)
{
    if (lead < 0x80)
        return {1, 0, 0};
    if (lead < 0xC2)
        return {0, 0, 0};
    if (lead < 0xE0)
        return {2, 0x80, 0xBF};
    if (lead < 0xF0)
        return {3, static_cast<uint8_t>(lead == 0xE0 ? 0xA0 : 0x80), 0xBF};
    if (lead < 0xF5)
        return {4, static_cast<uint8_t>(lead == 0xF0 ? 0x90 : 0x80), static_cast<uint8_t>(lead == 0xF4 ? 0x8F : 0xBF)};
    return {0, 0, 0};
}

// A sequence of the given form; surrogate code points pass.
inline DecodedCharacter DecodeSequence(std::string_view text, SequenceForm form)
{
    if (form.bytes == 0)
        return {kReplacement, 1};
    char32_t character = form.bytes == 1 ? ByteAt(text, 0) : ByteAt(text, 0) & (0x7Fu >> form.bytes);
    for (size_t i = 1; i < form.bytes; ++i) {
        const uint8_t from = i == 1 ? form.secondFrom : 0x80;
        const uint8_t to = i == 1 ? form.secondTo : 0xBF;
        if (i >= text.size() || ByteAt(text, i) < from || ByteAt(text, i) > to)
            return {kReplacement, i};
        character = (character << 6) | (ByteAt(text, i) & 0x3Fu);
    }
    return {character, form.bytes};
}

struct Utf8Codec {
    static constexpr size_t kMostBytes = 4;
    static DecodedCharacter Decode(std::string_view text)
    {
        SequenceForm form = FormOfLead(ByteAt(text, 0));
        if (ByteAt(text, 0) == 0xED)
            form.secondTo = 0x9F;  // no surrogates
        return DecodeSequence(text, form);
    }
    static size_t Encode(char32_t character, char* out)
    {
        if (character < 0x80) {
            out[0] = static_cast<char>(character);
            return 1;
        }
        const size_t bytes = character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
        for (size_t i = bytes - 1; i > 0; --i, character >>= 6)
            out[i] = static_cast<char>(0x80 | (character & 0x3F));
        out[0] = static_cast<char>((0xF00u >> bytes) | character);
        return bytes;
    }
};

// CESU-8: characters above U+FFFF are two surrogates of three bytes each, and have no four-byte form.
struct ScsCodec {
    static constexpr size_t kMostBytes = 6;
    static DecodedCharacter Decode(std::string_view text)
    {
        SequenceForm form = FormOfLead(ByteAt(text, 0));
        if (form.bytes == 4)
            form.bytes = 0;
        const DecodedCharacter first = DecodeSequence(text, form);
        if (IsLowSurrogate(first.character))
            return {kReplacement, first.bytes};
        if (!IsHighSurrogate(first.character))
            return first;
        const std::string_view rest = text.substr(first.bytes);
        if (rest.empty() || ByteAt(rest, 0) != 0xED)
            return {kReplacement, first.bytes};
        const DecodedCharacter second = DecodeSequence(rest, FormOfLead(0xED));
        if (!IsLowSurrogate(second.character))
            return {kReplacement, first.bytes};
        return {JoinSurrogates(first.character, second.character), first.bytes + second.bytes};
    }
    static size_t Encode(char32_t character, char* out)
    {
        if (character < 0x10000)
            return Utf8Codec::Encode(character, out);
        character -= 0x10000;
        const size_t bytes = Utf8Codec::Encode(0xD800 + (character >> 10), out);
        return bytes + Utf8Codec::Encode(0xDC00 + (character & 0x3FF), out + bytes);
    }
};

// UTF-16 in host byte order; the text's bytes need no alignment.
struct Utf16Codec {
    static constexpr size_t kMostBytes = 4;
    static char32_t UnitAt(std::string_view text, size_t byte)
    {
        uint16_t unit;
        std::memcpy(&unit, text.data() + byte, sizeof unit);
        return unit;
    }
    static DecodedCharacter Decode(std::string_view text)
    {
        if (text.size() < 2)
            return {kReplacement, 1};
        const char32_t unit = UnitAt(text, 0);
        if (IsHighSurrogate(unit) && text.size() >= 4 && IsLowSurrogate(UnitAt(text, 2)))
            return {JoinSurrogates(unit, UnitAt(text, 2)), 4};
        if (IsHighSurrogate(unit) || IsLowSurrogate(unit))
            return {kReplacement, 2};
        return {unit, 2};
    }
    static size_t Encode(char32_t character, char* out)
    {
        uint16_t units[2] = {static_cast<uint16_t>(character), 0};
        if (character >= 0x10000) {
            units[0] = static_cast<uint16_t>(0xD800 + ((character - 0x10000) >> 10));
            units[1] = static_cast<uint16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
        }
        const size_t bytes = character >= 0x10000 ? 4 : 2;
        std::memcpy(out, units, bytes);
        return bytes;
    }
};

// Converts as many whole characters as fit in `room` bytes; returns the bytes written.
template <typename From, typename To> size_t ConvertCharacters(std::string_view source, char* target, size_t room)
{
    size_t written = 0;
    while (!source.empty()) {
        const DecodedCharacter next = From::Decode(source);
        char encoded[To::kMostBytes];
        const size_t bytes = To::Encode(next.character, encoded);
        if (bytes > room - written)
            break;
        std::memcpy(target + written, encoded, bytes);
        written += bytes;
        source.remove_prefix(next.bytes);
    }
    return written;
}

}  // namespace pavex
