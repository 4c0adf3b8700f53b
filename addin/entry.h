// addin/entry.h: the one entry the client calls.
#pragma once

#include <cstddef>
#include <cstdint>

// The client's add-in record: a wire format.  Bytes 0..3 belong to the client.
constexpr size_t kRecordStatusOffset = 4;  // WORD
constexpr size_t kRecordMenuTextOffset = 6;
constexpr size_t kRecordMenuTextBytes = 63;
constexpr uint16_t kRecordActive = 1;
constexpr uint16_t kRecordNoMenu = 0xFFFF;

constexpr uint16_t kMessageLoad = 0;
constexpr uint16_t kMessageDialog = 2;
constexpr uint16_t kMessageUnload = 3;

// code: its low 16 bits are the message.  record: with kMessageLoad the client's add-in record (69 bytes,
// borrowed, its status word and menu text, SCS, are written); with kMessageDialog a pointer to an unsigned
// long; otherwise unused.  Returns 0.
extern "C" __attribute__((visibility("default"))) int MainEntryPoint(unsigned int code, void* record);
