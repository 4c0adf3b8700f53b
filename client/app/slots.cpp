// client/app/slots.cpp: the database slots as the ini file holds them.
#include "client/app/slots.h"

#include <cstdlib>
#include <sstream>

#include "client/store/host.h"

namespace pavex {

namespace {

std::vector<std::string> Fields(const std::string& record)
{
    std::vector<std::string> fields;
    std::istringstream stream(record);
    for (std::string field; std::getline(stream, field, '|');)
        if (!field.empty())
            fields.push_back(field);
    return fields;
}

// since, or since | until | note | processed | total; docs/formats/progress.md.
void ReadRecord(const std::string& record, Slot* slot)
{
    const std::vector<std::string> fields = Fields(record);
    if (!fields.empty() && fields[0] != "0")
        slot->since = fields[0];
    if (fields.size() < 3)
        return;
    const auto number = [&fields](size_t index) {
        return index < fields.size() ? static_cast<uint32_t>(std::atol(fields[index].c_str())) : 0;
    };
    slot->recovery = Recovery{fields[1], number(2), number(3), number(4)};
}

}  // namespace

std::vector<Slot> ReadSlots()
{
    std::vector<Slot> slots;
    for (int number = 0; number <= kHistorySlot; ++number) {
        const std::string suffix = number == 0 ? "" : std::to_string(number);
        Slot slot;
        slot.number = number;
        if (!GetVariable("GDSFilePath" + suffix, &slot.path) || slot.path.empty())
            continue;
        std::string record;
        if (GetVariable("GDSTimestamp" + suffix, &record))
            ReadRecord(record, &slot);
        slots.push_back(slot);
    }
    return slots;
}

}  // namespace pavex
