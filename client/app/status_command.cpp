// client/app/status_command.cpp: pavex status: what is indexed, how far, and why not.
#include <deque>
#include <fstream>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "client/app/command.h"
#include "client/app/indexing_state.h"
#include "client/app/json_output.h"
#include "client/app/slots.h"
#include "client/app/terminal_text.h"

namespace pavex {

namespace {

using OrderedJson = nlohmann::ordered_json;

constexpr size_t kLogLines = 5;
constexpr std::streamoff kLogTailBytes = 16384;

std::deque<std::string> LastLogLines()
{
    std::ifstream file(CurrentPlaces().log, std::ios::binary);
    file.seekg(0, std::ios::end);
    const std::streamoff end = file.tellg();
    const bool fromTheMiddle = end > kLogTailBytes;
    file.seekg(fromTheMiddle ? end - kLogTailBytes : 0);
    std::deque<std::string> lines;
    std::string line;
    if (fromTheMiddle)
        std::getline(file, line);  // the rest of a line
    while (std::getline(file, line)) {
        lines.push_back(line);
        if (lines.size() > kLogLines)
            lines.pop_front();
    }
    return lines;
}

OrderedJson JsonOf(const Slot& slot)
{
    OrderedJson json{{"slot", slot.number}, {"path", slot.path}, {"since", nullptr}, {"recovery", nullptr}};
    if (!slot.since.empty())
        json["since"] = slot.since;
    if (slot.recovery)
        json["recovery"] = {{"until", slot.recovery->until},
                            {"note", slot.recovery->note},
                            {"processed", slot.recovery->processed},
                            {"total", slot.recovery->total}};
    return json;
}

void PrintJson(const std::vector<Slot>& slots, const std::string& whyNot)
{
    OrderedJson databases = OrderedJson::array();
    for (const Slot& slot : slots)
        databases.push_back(JsonOf(slot));
    OrderedJson json{
        {"enabled", whyNot.empty()}, {"reason", nullptr}, {"databases", databases}, {"log", LastLogLines()}};
    if (!whyNot.empty())
        json["reason"] = whyNot;
    std::cout << TextOfJson(json) << '\n';
}

std::string StateOf(const Slot& slot)
{
    if (slot.recovery && slot.recovery->total != 0)
        return "interrupted at " + std::to_string(slot.recovery->processed) + " of " +
               std::to_string(slot.recovery->total) + " notes";
    if (slot.recovery)
        return "interrupted";
    return slot.since.empty() ? "not indexed yet" : "indexed up to " + slot.since;
}

void PrintText(const std::vector<Slot>& slots, const std::string& whyNot)
{
    std::cout << (whyNot.empty() ? "indexing is on" : "indexing is off: " + whyNot) << '\n';
    for (const Slot& slot : slots)
        std::cout << "  " << PrintableLine(slot.path) << ": " << StateOf(slot) << '\n';
    const std::deque<std::string> lines = LastLogLines();
    if (!lines.empty())
        std::cout << "last log entries (" << PrintableLine(CurrentPlaces().log) << "):\n";
    for (const std::string& line : lines)
        std::cout << "  " << PrintableLine(line) << '\n';
}

}  // namespace

CommandFunction ConfigureStatus(CLI::App& options)
{
    const auto json = std::make_shared<bool>(false);
    options.add_flag("--json", *json, "print one JSON object");
    return [json] {
        const std::vector<Slot> slots = ReadSlots();
        const std::string whyNot = WhyNothingIsIndexed(slots);
        if (*json)
            PrintJson(slots, whyNot);
        else
            PrintText(slots, whyNot);
        return kExitDone;
    };
}

}  // namespace pavex
