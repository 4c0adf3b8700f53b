// client/app/history_command.cpp: pavex history: the notes that were opened, newest first.
#include <iostream>
#include <memory>

#include "client/app/command.h"
#include "client/app/history.h"
#include "client/app/json_output.h"
#include "client/app/local_time.h"
#include "client/app/terminal_text.h"
#include "client/store/timedate.h"

namespace pavex {

namespace {

constexpr size_t kIndent = 4;

// A line for programs; where somebody looks at it, one for the eye and one to copy.
void Print(const HistoryEntry& entry, bool json)
{
    const std::string opened = IsoFromTime(entry.opened);
    const size_t columns = TerminalColumns();
    if (json)
        std::cout << TextOfJson({{"opened", opened}, {"title", entry.title}, {"url", entry.url}}) << '\n';
    else if (columns == 0)
        std::cout << opened << '\t' << PrintableLine(entry.title) << '\t' << entry.url << '\n';
    else
        std::cout << WrapLine(LocalTimeText(UnixFromTime(entry.opened).value_or(0)) + "  " + PrintableLine(entry.title),
                              columns, kIndent)
                  << '\n'
                  << IndentLine(entry.url, columns, kIndent) << '\n';
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
