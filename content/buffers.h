// content/buffers.h: the scratch buffers that the add-in reads a note through.
// One set for the process, used on the indexing thread only.  Each helper says which it uses; a helper
// must not call another that uses the same buffer while it still needs the content.
#pragma once

#include <cstddef>
#include <cstdint>

constexpr uint16_t kBufferLimit = 32768;  // bytes: what callers pass as a buffer's size
constexpr size_t kBufferBytes = 32784;
constexpr size_t kBuffer3Bytes = 32769;

// Bytes of wBuffer that a flush of body text fills; an item's text may fill kWideItemLimit.
constexpr uint16_t kWideFlushLimit = 60000;
constexpr uint16_t kWideItemLimit = 65535;

// Written from every folder that reads notes: content/ and indexers/.
extern char Buffer1[kBufferBytes];
extern char Buffer2[kBufferBytes];
extern char Buffer3[kBuffer3Bytes];
extern char Buffer4[kBufferBytes];
extern char Buffer5[kBufferBytes];
extern char Buffer6[kBufferBytes];
extern char Buffer7[kBufferBytes];
extern char FileBuffer[kBufferBytes];
// UTF-16.  Larger than the 60,000 bytes that body text uses, because an item's text may take kWideItemLimit.
extern uint16_t wBuffer[kWideItemLimit / 2 + 1];
