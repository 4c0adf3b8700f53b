// client/app/check_command.cpp: pavex check: holds databases, progress records and metafiles against each other.
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "client/app/command.h"
#include "client/app/indexing_state.h"
#include "client/app/instance_lock.h"
#include "client/app/json_output.h"
#include "client/app/terminal_text.h"
#include "client/check/check.h"
#include "client/search/configuration.h"

namespace pavex {

namespace {

using OrderedJson = nlohmann::ordered_json;

constexpr size_t kDefaultExamples = 5;
constexpr size_t kMostExamples = 1'000'000;

struct CheckArguments {
    bool repair = false;
    bool json = false;
    size_t examples = kDefaultExamples;
};

std::string Counted(uint64_t count, const char* one, const char* many)
{
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

void AddText(OrderedJson* json, const char* key, const std::string& text)
{
    if (!text.empty())
        (*json)[key] = text;
}

OrderedJson JsonOf(const Example& example)
{
    OrderedJson json = OrderedJson::object();
    AddText(&json, "database", example.database);
    if (example.note != 0)
        json["noteid"] = example.note;
    AddText(&json, "url", example.url);
    AddText(&json, "file", example.file);
    AddText(&json, "reason", example.reason);
    return json;
}

void PrintJson(const CheckReport& report)
{
    OrderedJson findings = OrderedJson::array();
    for (size_t i = 0; i < static_cast<size_t>(Finding::kCount); ++i) {
        const CheckReport::Group& group = report.Of(static_cast<Finding>(i));
        if (group.count == 0)
            continue;
        OrderedJson examples = OrderedJson::array();
        for (const Example& example : group.examples)
            examples.push_back(JsonOf(example));
        findings.push_back({{"kind", TextOf(static_cast<Finding>(i)).name},
                            {"count", group.count},
                            {"repaired", group.repaired},
                            {"examples", examples}});
    }
    std::cout << TextOfJson({{"databases", report.databases},
                             {"notes", report.notes},
                             {"metafiles", report.metafiles},
                             {"waiting", report.waiting},
                             {"problems", report.Found()},
                             {"repaired", report.Repaired()},
                             {"needs_pass", report.NeedsPass()},
                             {"findings", findings},
                             {"remarks", report.Remarks()}})
              << '\n';
}

// "/path/of/mail.vlt, note 3, REPLICA/UNID.KIND: reason".
std::string LineOf(const Example& example, const std::string& metadata)
{
    std::string line = example.database;
    const auto append = [&line](const std::string& part) { line += (line.empty() ? "" : ", ") + part; };
    if (example.note != 0)
        append("note " + std::to_string(example.note));
    if (!example.file.empty())
        append(example.file.starts_with(metadata) ? example.file.substr(metadata.size()) : example.file);
    if (!example.reason.empty())
        line += (line.empty() ? "" : ": ") + example.reason;
    return line;
}

void PrintGroup(const FindingText& text, const CheckReport::Group& group, bool isRepair)
{
    const std::string metadata = MetadataFolder(CurrentPlaces().caches) + "/";
    std::cout << Counted(group.count, text.one, text.many);
    if (isRepair && group.repaired == group.count)
        std::cout << ": repaired";
    else if (isRepair)
        std::cout << ": " << group.repaired << " repaired";
    std::cout << '\n';
    for (const Example& example : group.examples)
        std::cout << "    " << PrintableLine(LineOf(example, metadata)) << '\n';
    if (const uint64_t more = group.count - group.examples.size(); more != 0)
        std::cout << "    and " << more << " more\n";
}

// What the user has to do next.
void PrintAdvice(const CheckReport& report, bool isRepair)
{
    const std::string whyNot = WhyNothingIsIndexed(ReadSlots());
    if (report.waiting != 0)
        std::cout << Counted(report.waiting, "note waits", "notes wait") << " for the next pass of the indexing\n";
    for (const std::string& remark : report.Remarks())
        std::cout << PrintableLine(remark) << '\n';
    if (report.Found() == 0)
        std::cout << "nothing is wrong\n";
    else if (!isRepair && report.Repairable() != 0)
        std::cout << "repair with: pavex check --repair\n";
    else if (report.NeedsPass())
        std::cout << "the next pass writes the metafiles again: pavex index\n";
    if (!whyNot.empty() && (report.waiting != 0 || report.NeedsPass()))
        std::cout << "no pass will come: " << whyNot << '\n';
}

void PrintText(const CheckReport& report, bool isRepair)
{
    std::cout << Counted(report.databases, "database", "databases") << ", " << Counted(report.notes, "note", "notes")
              << ", " << Counted(report.metafiles, "metafile", "metafiles") << " in "
              << PrintableLine(MetadataFolder(CurrentPlaces().caches)) << '\n';
    for (size_t i = 0; i < static_cast<size_t>(Finding::kCount); ++i)
        if (const CheckReport::Group& group = report.Of(static_cast<Finding>(i)); group.count != 0)
            PrintGroup(TextOf(static_cast<Finding>(i)), group, isRepair);
    PrintAdvice(report, isRepair);
}

int RunCheck(const CheckArguments& arguments)
{
    if (CurrentPlaces().caches.empty())
        return Fail("there is no caches folder, and so there are no metafiles");
    std::string error;
    bool isHeld = false;
    const std::optional<InstanceLock> lock = arguments.repair ? InstanceLock::Take(&error, &isHeld) : std::nullopt;
    if (arguments.repair && !lock)
        return Fail(error + (isHeld ? "; a repair needs it to be ended first" : ""));
    CheckReport report(arguments.examples);
    Repair repair(arguments.repair, &report);
    CheckHome(MetadataFolder(CurrentPlaces().caches), &repair, &report);
    if (arguments.json)
        PrintJson(report);
    else
        PrintText(report, arguments.repair);
    return report.Found() == report.Repaired() ? kExitDone : kExitFailed;
}

}  // namespace

CommandFunction ConfigureCheck(CLI::App& options)
{
    const auto arguments = std::make_shared<CheckArguments>();
    options.add_flag("--repair", arguments->repair, "put right what can be put right");
    options.add_option("--examples", arguments->examples, "tell of at most this many of each kind")
        ->capture_default_str()
        ->check(CLI::Range(size_t{0}, kMostExamples));
    options.add_flag("--json", arguments->json, "print one JSON object");
    return [arguments] { return RunCheck(*arguments); };
}

}  // namespace pavex
