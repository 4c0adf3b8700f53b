// content/hash.cpp: a hash of the lookup2 family: golden-ratio start, 12-byte blocks, nine-step mix.
#include "content/hash.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint32_t kGoldenRatio = 0x9E3779B9;
constexpr uint32_t kUpToNul = 0xFFFFFFFF;
constexpr uint32_t kBlockBytes = 12;
constexpr WORD kTextUpToNul = 0xFFFF;
constexpr WORD kConversationBytes = 256;
constexpr WORD kUtf8Expansion = 3;  // room for each byte of SCS text

struct State {
    uint32_t a = kGoldenRatio;
    uint32_t b = kGoldenRatio;
    uint32_t c = 0;
};

void Mix(State& state)
{
    auto& [a, b, c] = state;
    a = (a - b - c) ^ (c >> 13);
    b = (b - c - a) ^ (a << 8);
    c = (c - a - b) ^ (b >> 13);
    a = (a - b - c) ^ (c >> 12);
    b = (b - c - a) ^ (a << 16);
    c = (c - a - b) ^ (b >> 5);
    a = (a - b - c) ^ (c >> 3);
    b = (b - c - a) ^ (a << 10);
    c = (c - a - b) ^ (b >> 15);
}

uint32_t LittleEndianAt(const unsigned char* bytes)
{
    return bytes[0] | uint32_t{bytes[1]} << 8 | uint32_t{bytes[2]} << 16 | uint32_t{bytes[3]} << 24;
}

// The bytes after the last whole block.  The lowest byte of c is the length's.
void AddTail(State& state, const unsigned char* bytes, uint32_t count)
{
    for (uint32_t i = 0; i < count; ++i) {
        if (i < 4)
            state.a += uint32_t{bytes[i]} << (8 * i);
        else if (i < 8)
            state.b += uint32_t{bytes[i]} << (8 * (i - 4));
        else
            state.c += uint32_t{bytes[i]} << (8 * (i - 8 + 1));
    }
}

}  // namespace

uint32_t CstrhashImproved(const void* key, uint32_t length, uint32_t modulus)
{
    const auto* bytes = static_cast<const unsigned char*>(key);
    if (length == kUpToNul)
        length = static_cast<uint32_t>(std::strlen(static_cast<const char*>(key)));
    State state;
    uint32_t left = length;
    for (; left >= kBlockBytes; left -= kBlockBytes, bytes += kBlockBytes) {
        state.a += LittleEndianAt(bytes);
        state.b += LittleEndianAt(bytes + 4);
        state.c += LittleEndianAt(bytes + 8);
        Mix(state);
    }
    state.c += length;
    AddTail(state, bytes, left);
    Mix(state);
    return modulus != 0 ? state.c % modulus : state.c - 1;
}

uint32_t MakeConvID(const char* text, WORD length)
{
    if (length == kTextUpToNul)
        length = static_cast<WORD>(std::strlen(text));
    const WORD used = std::min(length, kConversationBytes);
    char utf8[kConversationBytes * kUtf8Expansion];
    const WORD utf8Bytes = OSTranslate(kTranslateScsToUtf8, text, used, utf8, static_cast<WORD>(used * kUtf8Expansion));
    return CstrhashImproved(utf8, utf8Bytes, 0);
}
