// client/app/index_command.cpp: pavex index: one whole cycle, now.
#include <iostream>
#include <memory>

#include "client/app/addin_host.h"
#include "client/app/command.h"
#include "client/app/cycle_report.h"
#include "client/app/hurried_clock.h"
#include "client/app/instance_lock.h"
#include "client/app/json_output.h"
#include "client/app/policy_check.h"
#include "client/app/progress_line.h"
#include "client/app/signals.h"
#include "client/app/slots.h"
#include "client/app/terminal_text.h"
#include "client/foundation/host.h"
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
    // as the add-in reads it: a negative number is a very large one
    const long minutes = set == 0 ? kDefaultMinutes : set < 0 ? kMostMinutes : std::min(set, kMostMinutes);
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

enum class CycleEnd { Done, Stopped, NoThread };

CycleEnd WaitForCycle(const HurriedClock& clock, const CycleReport& report, ProgressLine& line)
{
    while (!clock.CycleDone()) {
        if (WaitForSignal(kLookMs))
            return CycleEnd::Stopped;
        if (report.ThreadFailed())
            return CycleEnd::NoThread;
        line.Show(report.Activity());
    }
    return CycleEnd::Done;
}

// The clock and the ear on the log, for as long as the add-in works.
class IndexSession {
public:
    IndexSession(HurriedClock* clock, CycleReport* report, bool debug)
    {
        SetClock(clock);
        ListenToLog(report, debug);
    }
    ~IndexSession()
    {
        SetLogObserver(nullptr);
        SetClock(nullptr);
    }
    IndexSession(const IndexSession&) = delete;
    IndexSession& operator=(const IndexSession&) = delete;
};

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
    std::cout << TextOfJson({{"databases", databases}, {"history", history}, {"stopped", stopped}}) << '\n';
}

void PrintText(const std::vector<Slot>& slots, const CycleReport& report, bool stopped)
{
    for (const Slot& slot : slots) {
        const std::optional<PassResult> result = report.ResultOf(slot.path);
        if (!result)
            continue;
        std::cout << PrintableLine(slot.path) << ": ";
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

std::string WhyNotReached(const CycleReport& report)
{
    if (std::string obstacle = report.Obstacle(); !obstacle.empty())
        return obstacle;
    if (RunsOnBattery())
        return "indexing waits while the computer runs on battery";
    return "the cycle ended before its turn; see " + CurrentPlaces().log;
}

// Why a configured database was not reached, failures of those that were, and progress that was not saved.
int Judge(const std::vector<Slot>& slots, const CycleReport& report, bool stopped)
{
    int exit = kExitDone;
    bool anyDatabase = false;
    for (const Slot& slot : slots) {
        anyDatabase = anyDatabase || slot.number != kHistorySlot;
        const std::optional<PassResult> result = report.ResultOf(slot.path);
        if (!result && !stopped && slot.number != kHistorySlot)
            exit = Fail(slot.path + " was not indexed: " + WhyNotReached(report));
        else if (result && result->status != 0 && result->status != kStatusNothingModified &&
                 result->status != kStatusStopped)
            exit = Fail(slot.path + ": " + DescribeStatus(result->status));
    }
    if (const std::string failed = TakeFailedWrite(); !failed.empty())
        exit = Fail(failed);
    if (!anyDatabase)
        return Fail("no databases are chosen; choose them with: pavex settings --enable --yes --add FILE.vlt");
    return exit;
}

// False, with *error, when the add-in could not be loaded.
bool RunOneCycle(const IndexArguments& arguments, CycleReport* report, CycleEnd* end, std::string* error)
{
    HurriedClock clock(IdleForOneCycle());
    const IndexSession session(&clock, report, arguments.debug);
    if (arguments.fullSpeed)
        OverrideVariable("GoogleWaitTime", "0");
    ProgressLine line(!arguments.json);
    if (line.IsShown())
        OverrideVariable("GoogleDebugLots", "1");  // an entry for each note
    const std::unique_ptr<AddIn> addIn = AddIn::Load(error);
    if (addIn == nullptr)
        return false;
    addIn->Start();
    *end = addIn->IsRunning() ? WaitForCycle(clock, *report, line) : CycleEnd::NoThread;
    clock.EndDelays();
    addIn->Stop();
    return true;
}

int RunIndex(const IndexArguments& arguments)
{
    HoldSignals();
    if (OSGetEnvironmentLong("GDSIndexEnabled") == 0)
        return Fail("indexing is switched off; switch it on with: pavex settings --enable --yes");
    if (PolicyLocksIndexing())
        return Fail("the administrator's policy locks indexing off");
    std::string error;
    const std::optional<InstanceLock> lock = InstanceLock::Take(&error);
    if (!lock)
        return Fail(error);
    CycleReport report;
    CycleEnd end = CycleEnd::Done;
    if (!RunOneCycle(arguments, &report, &end, &error))
        return Fail(error);
    if (end == CycleEnd::NoThread)
        return Fail("the indexing thread could not be started; see " + CurrentPlaces().log);
    const bool stopped = end == CycleEnd::Stopped;
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
