// content/hash.h: the 32-bit string hash and the conversation id made with it.
#pragma once

#include <cstdint>

#include "platform/store.h"

// Lookup2-family hash of `length` bytes (0xFFFFFFFF: up to the NUL).  The result is taken modulo
// `modulus`; with modulus 0 it is the hash less one, wrapping.  Any thread.
extern "C" __attribute__((visibility("default"))) uint32_t CstrhashImproved(const void* key, uint32_t length,
                                                                            uint32_t modulus);
// Conversation id of SCS text, a subject for instance: the first 256 bytes of `length` (0xFFFF: up to the
// NUL) take part.  Any thread.
uint32_t MakeConvID(const char* text, WORD length);
