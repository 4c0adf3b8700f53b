// client/app/slots.h: the database slots as the ini file holds them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pavex {

constexpr int kHistorySlot = 15;

struct Recovery {
    std::string until;  // in the store's text form
    uint32_t note = 0;
    uint32_t processed = 0;
    uint32_t total = 0;
};

struct Slot {
    int number = 0;
    std::string path;                  // UTF-8
    std::string since;                 // indexed up to, in the store's text form; empty: never
    std::optional<Recovery> recovery;  // of an interrupted pass
};

// The configured slots in order, the history's included.
std::vector<Slot> ReadSlots();

}  // namespace pavex
