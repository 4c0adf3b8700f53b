// client/store/note.h: a note in memory: its identity and its items in stored order.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/store.h"

namespace pavex {

constexpr uint16_t kClassDocument = 1;
constexpr uint16_t kClassForm = 4;

// One item.  The value is held as the store's calls hand it out: without its type word, text in SCS.
struct Item {
    std::string name;   // ASCII
    uint16_t type = 0;  // kTypeText ...
    uint16_t flags = 0;
    std::string value;

    bool operator==(const Item&) const = default;
};

constexpr uint16_t kItemSealed = 1;  // encrypted when the note is sealed and saved
constexpr uint16_t kItemSign = 2;

// Values for the writers.  Text is UTF-8 on this side; "\n" in it is stored as the NUL line break.
Item TextItem(std::string_view name, std::string_view utf8);
Item TextListItem(std::string_view name, const std::vector<std::string>& utf8);
Item NumberItem(std::string_view name, double number);
Item TimeItem(std::string_view name, const TIMEDATE& time);
Item TimeListItem(std::string_view name, const std::vector<TIMEDATE>& times);
Item RichTextItem(std::string_view name, std::string records);  // from RichTextBuilder
Item FormulaItem(std::string_view name, std::string_view utf8);

// Values for the readers: nothing when the item is of another type or its value is damaged.
std::optional<std::vector<std::string>> TextValues(const Item& item);  // text or text list, UTF-8, "\n" for breaks
std::optional<double> NumberValue(const Item& item);                   // number, or first of a range
std::optional<std::vector<TIMEDATE>> TimeValues(const Item& item);     // time or time range

// Names are ASCII and compared without regard to case.
bool SameItemName(std::string_view a, std::string_view b);

struct Note {
    uint32_t id = 0;  // 0: not yet saved
    UNID unid{};      // all zero: made when it is saved
    uint32_t sequence = 0;
    TIMEDATE created{};   // the note part of the UNID; zero: now
    TIMEDATE modified{};  // the sequence time, as users see it; zero: now
    uint16_t noteClass = kClassDocument;
    bool sealed = false;
    std::vector<Item> items;

    const Item* Find(std::string_view name) const;  // first of the name, without regard to case
    void Set(Item item);                            // replaces the first of its name, or appends
};

}  // namespace pavex
