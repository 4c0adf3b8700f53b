// client/app/history_command.cpp: pavex history: the notes that were opened, newest first.
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "client/app/command.h"
#include "client/app/history.h"
#include "client/app/note_text.h"
#include "client/store/timedate.h"

namespace pavex {

namespace {

void Print(const HistoryEntry& entry, bool json)
{
    const std::string opened = IsoFromTime(entry.opened);
    if (json)
        std::cout << nlohmann::ordered_json{{"opened", opened}, {"title", entry.title}, {"url", entry.url}}.dump(
                         -1, ' ', false, nlohmann::json::error_handler_t::replace)
                  << '\n';
    else
        std::cout << opened << '\t' << OneLine(entry.title) << '\t' << entry.url << '\n';
}

}  // namespace

CommandFunction ConfigureHistory(CLI::App& options)
{
    const auto json = std::make_shared<bool>(false);
    options.add_flag("--json", *json, "print JSON, one object a line");
    return [json] {
        std::string error;
        if (!ListHistory([json](const HistoryEntry& entry) { Print(entry, *json); }, &error))
            return Fail(error);
        return kExitDone;
    };
}

}  // namespace pavex
