// client/app/import_command.cpp: pavex import: sources into databases.
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "client/app/command.h"
#include "client/app/json_output.h"
#include "client/app/progress_line.h"
#include "client/app/terminal_text.h"
#include "client/import/importer.h"

namespace pavex {

namespace {

struct ImportArguments {
    std::vector<std::string> sources;
    std::string into;
    std::string as = "mail";
    bool prune = false;
    bool json = false;
};

nlohmann::ordered_json JsonOf(const std::vector<RejectedEntry>& entries)
{
    nlohmann::ordered_json json = nlohmann::ordered_json::array();
    for (const RejectedEntry& entry : entries)
        json.push_back({{"source", entry.source}, {"where", entry.where}, {"reason", entry.reason}});
    return json;
}

void PrintJson(const ImportReport& report)
{
    nlohmann::ordered_json json{{"added", report.added},
                                {"updated", report.updated},
                                {"unchanged", report.unchanged},
                                {"removed", report.removed},
                                {"rejected", JsonOf(report.rejected)}};
    if (!report.notices.empty())
        json["notices"] = JsonOf(report.notices);
    std::cout << TextOfJson(json) << '\n';
}

void PrintText(const ImportReport& report)
{
    for (const RejectedEntry& entry : report.rejected)
        std::cerr << "pavex: rejected " << PrintableLine(entry.where + ": " + entry.reason) << '\n';
    for (const RejectedEntry& entry : report.notices)
        std::cerr << "pavex: " << PrintableLine(entry.where + ": " + entry.reason) << '\n';
    std::cout << report.added << " added, " << report.updated << " updated, " << report.unchanged << " unchanged, "
              << report.removed << " removed, " << report.rejected.size() << " rejected\n";
}

int RunImport(const ImportArguments& arguments)
{
    ImportOptions options;
    options.into = arguments.into.empty() ? "" : DatabasePath(arguments.into);
    options.as = arguments.as == "discussion" ? ImportOptions::As::kDiscussion : ImportOptions::As::kMail;
    options.prune = arguments.prune;
    options.dataDirectory = CurrentPlaces().data;
    ImportReport report;
    std::string error;
    bool imported = false;
    {
        ProgressLine line(!arguments.json);
        imported = Import(
            arguments.sources, options,
            [&line](const ImportProgress& progress) {
                line.Show(progress.source + ": " + std::to_string(progress.entries) + " entries");
                return true;
            },
            &report, &error);
    }
    if (arguments.json)
        PrintJson(report);
    else
        PrintText(report);
    return imported ? kExitDone : Fail(error);
}

}  // namespace

CommandFunction ConfigureImport(CLI::App& options)
{
    const auto arguments = std::make_shared<ImportArguments>();
    options
        .add_option("SOURCE", arguments->sources,
                    "mailboxes, Maildirs, message files, calendars, vCards, bookmark files, texts, or folders of them")
        ->required();
    options
        .add_option("--into", arguments->into,
                    "the database to write; default: by what an entry is, in the data directory: mail.vlt, names.vlt "
                    "(contacts), calendar.vlt (events, tasks, journal entries), documents.vlt (postings, bookmarks, "
                    "texts), bookmark.vlt (bookmarks of notes)")
        ->type_name("FILE.vlt");
    options.add_option("--as", arguments->as, "what messages become: mail, or postings of a discussion")
        ->check(CLI::IsMember({"mail", "discussion"}));
    options.add_flag("--prune", arguments->prune, "delete notes whose source entry is gone");
    options.add_flag("--json", arguments->json, "print the report as one JSON object");
    return [arguments] { return RunImport(*arguments); };
}

}  // namespace pavex
