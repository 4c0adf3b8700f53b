// client/app/index_command.cpp: pavex index: one whole cycle, now.
#include <unistd.h>

#include <iostream>
#include <memory>

#include "client/app/addin_host.h"
#include "client/app/command.h"
#include "client/app/cycle_report.h"
#include "client/app/hurried_clock.h"
#include "client/app/policy_check.h"
#include "client/app/signals.h"
#include "client/app/slots.h"
#include "client/store/database.h"
#include "platform/store.h"

namespace pavex {

namespace {

using OrderedJson = nlohmann::ordered_json;

struct IndexArguments {
    bool fullSpeed = false;
    bool debug = false;
    bool json = false;
};

constexpr int kLookMs = 20;
constexpr uint64_t kMinuteMs = 60000;

// A period of waiting brings the cycle, a further minute the history pass that may follow it.
uint64_t IdleForOneCycle()
{
    constexpr long kDefaultMinutes = 5;
    constexpr long kMostMinutes = 99;
    const long set = OSGetEnvironmentLong("GDSFreqMinutes");
    const long minutes = set <= 0 ? kDefaultMinutes : std::min(set, kMostMinutes);
    return static_cast<uint64_t>(minutes + 1) * kMinuteMs + 2000;
}

// The add-in's debug entries tell what each pass did; they go to the log only when the user wants them.
void ListenToLog(CycleReport* report, bool debug)
{
    std::string value;
    const bool debugStays = debug || (GetVariable("GoogleDebug", &value) && value != "0");
    SetLogObserver([report, debugStays](const LogEntry& entry) {
        report->Take(entry);
        return debugStays || !IsDebugEntry(entry.id);
    });
    OverrideVariable("GoogleDebug", "1");
}

class ProgressLine {
public:
    ProgressLine(bool wanted, const CycleReport& report) : shown_(wanted && isatty(STDERR_FILENO) != 0), report_(report)
    {
        if (shown_)
            OverrideVariable("GoogleDebugLots", "1");  // an entry for each note
    }
    void Update()
    {
        if (shown_)
            std::cerr << "\r\033[K" << report_.Activity() << std::flush;
    }
    ~ProgressLine()
    {
        if (shown_)
            std::cerr << "\r\033[K";
    }

private:
    const bool shown_;
    const CycleReport& report_;
};

// True when the user or the system ended it before the cycle was done.
bool WaitForCycle(const HurriedClock& clock, ProgressLine& line)
{
    while (!clock.CycleDone()) {
        if (WaitForSignal(kLookMs))
            return true;
        line.Update();
    }
    return false;
}

void PrintJson(const std::vector<Slot>& slots, const CycleReport& report, bool stopped)
{
    OrderedJson databases = OrderedJson::array();
    OrderedJson history = nullptr;
    for (const Slot& slot : slots) {
        const std::optional<PassResult> result = report.ResultOf(slot.path);
        if (!result)
            continue;
        OrderedJson json{{"slot", slot.number}, {"path", slot.path}};
        json.update(JsonOf(*result));
        if (slot.number == kHistorySlot)
            history = json;
        else
            databases.push_back(json);
    }
    std::cout << OrderedJson{{"databases", databases}, {"history", history}, {"stopped", stopped}}.dump(
                     -1, ' ', false, nlohmann::json::error_handler_t::replace)
              << '\n';
}

void PrintText(const std::vector<Slot>& slots, const CycleReport& report, bool stopped)
{
    for (const Slot& slot : slots) {
        const std::optional<PassResult> result = report.ResultOf(slot.path);
        if (!result)
            continue;
        std::cout << slot.path << ": ";
        if (result->status == kStatusNothingModified)
            std::cout << "up to date\n";
        else if (result->status != 0 && result->status != kStatusStopped)
            std::cout << DescribeStatus(result->status) << '\n';
        else
            std::cout << result->indexed << " indexed, " << result->deleted << " removed, " << result->skipped
                      << " skipped, " << result->errors + result->blankFailures << " failed\n";
    }
    if (stopped)
        std::cout << "stopped; the next run goes on from here\n";
}

// Why a configured database was not reached, and failures of those that were.
int Judge(const std::vector<Slot>& slots, const CycleReport& report, bool stopped)
{
    int exit = kExitDone;
    bool anyDatabase = false;
    for (const Slot& slot : slots) {
        anyDatabase = anyDatabase || slot.number != kHistorySlot;
        const std::optional<PassResult> result = report.ResultOf(slot.path);
        if (!result && !stopped && slot.number != kHistorySlot)
            exit = Fail(slot.path + " was not indexed: indexing waits while the computer runs on battery");
        else if (result && result->status != 0 && result->status != kStatusNothingModified &&
                 result->status != kStatusStopped)
            exit = Fail(slot.path + ": " + DescribeStatus(result->status));
    }
    if (!anyDatabase)
        return Fail("no databases are chosen; choose them with: pavex settings --enable --yes");
    return exit;
}

int RunIndex(const IndexArguments& arguments)
{
    HoldSignals();
    if (OSGetEnvironmentLong("GDSIndexEnabled") == 0)
        return Fail("indexing is switched off; switch it on with: pavex settings --enable --yes");
    CycleReport report;
    HurriedClock clock(IdleForOneCycle());
    SetClock(&clock);
    ListenToLog(&report, arguments.debug);
    if (arguments.fullSpeed)
        OverrideVariable("GoogleWaitTime", "0");
    bool stopped = false;
    {
        ProgressLine line(!arguments.json, report);
        std::string error;
        const std::unique_ptr<AddIn> addIn = AddIn::Load(&error);
        if (addIn == nullptr)
            return Fail(error);
        if (PolicyLocksIndexing())
            return Fail("the administrator's policy locks indexing off");
        addIn->Start();
        stopped = WaitForCycle(clock, line);
        clock.EndDelays();
        addIn->Stop();
    }
    SetLogObserver(nullptr);
    SetClock(nullptr);
    const std::vector<Slot> slots = ReadSlots();
    if (arguments.json)
        PrintJson(slots, report, stopped);
    else
        PrintText(slots, report, stopped);
    return Judge(slots, report, stopped);
}

}  // namespace

CommandFunction ConfigureIndex(CLI::App& options)
{
    const auto arguments = std::make_shared<IndexArguments>();
    options.add_flag("--full-speed", arguments->fullSpeed, "no pauses between notes, in this run");
    options.add_flag("--debug", arguments->debug, "write the add-in's debug entries into the log");
    options.add_flag("--json", arguments->json, "print what was done as one JSON object");
    return [arguments] { return RunIndex(*arguments); };
}

}  // namespace pavex
