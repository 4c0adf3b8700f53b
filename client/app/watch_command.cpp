// client/app/watch_command.cpp: pavex watch: the list of sources that a client that stays reads in again.
#include <fcntl.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "client/app/command.h"
#include "client/app/indexing_state.h"
#include "client/app/json_output.h"
#include "client/app/terminal_text.h"
#include "client/app/unindexed_targets.h"
#include "client/store/descriptor.h"
#include "client/store/shell_word.h"
#include "client/watch/read_records.h"
#include "client/watch/watch_list.h"
#include "client/watch/watch_lock.h"

namespace pavex {

namespace {

namespace fs = std::filesystem;
using OrderedJson = nlohmann::ordered_json;

struct WatchArguments {
    std::vector<std::string> sources;
    std::string as = "mail";
    std::string into;
    bool prune = false;
    bool list = false;
    bool remove = false;
    bool json = false;
};

constexpr const char* kNobodyWatches = "nothing is read in until the client runs: pavex run, or pavex desktop";

bool SomebodyWatches()
{
    return WatchLock::IsHeldByOther(CurrentPlaces().data);
}

// Absolute, without "." and ".." and without a slash at its end; symbolic links stay as the user named them.
std::string PathOf(const std::string& source)
{
    std::error_code failure;
    std::string path = fs::absolute(source, failure).lexically_normal().string();
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back();
    return path;
}

// Why it cannot be read now; empty when it can.
std::string WhyUnreadable(const std::string& path)
{
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file.IsOpen())
        return std::string("cannot be read: ") + std::strerror(errno);
    std::error_code none;
    return fs::is_regular_file(path, none) || fs::is_directory(path, none) ? "" : "is neither a file nor a folder";
}

// ", as discussion, into FILE, pruned"
std::string TextOfOptions(const WatchedSource& source)
{
    std::string text;
    if (source.as != ImportOptions::As::kMail)
        text += std::string(", as ") + NameOf(source.as);
    if (!source.into.empty())
        text += ", into " + source.into;
    return text + (source.prune ? ", pruned" : "");
}

void Tell(const WatchedSource& source, const AddedSource& added)
{
    const std::string options = PrintableLine(TextOfOptions(source));
    const std::string path = PrintableLine(source.path);
    switch (added.outcome) {
    case AddedSource::Outcome::kAdded:
        std::cout << path << ": watched from now on" << options << '\n';
        break;
    case AddedSource::Outcome::kChanged:
        std::cout << path << ": watched as before, with new options" << options << '\n';
        break;
    case AddedSource::Outcome::kUnchanged:
        std::cout << path << ": is watched already" << options << '\n';
        break;
    case AddedSource::Outcome::kCovered:
        std::cout << path << ": is watched already, as a part of " << PrintableLine(added.covering) << '\n';
        break;
    case AddedSource::Outcome::kFailed:
        break;
    }
    for (const std::string& covered : added.covered) {
        std::cout << "  " << PrintableLine(covered)
                  << " is a part of it and need not be listed by itself: pavex watch --remove "
                  << PrintableLine(ShellWord(covered)) << '\n';
    }
}

// Between the sources of a list and their being found.
void TellWhatIsMissing(const WatchList& list, const ReadRecords& records)
{
    if (list.entries.empty())
        return;
    if (!SomebodyWatches())
        std::cout << kNobodyWatches << '\n';
    if (const std::string why = WhyNothingIsIndexed(ReadSlots()); !why.empty())
        std::cout << "what is read in is not indexed: " << why << '\n';
    for (const std::string& line : TellUnindexedTargets(list, records))
        std::cout << PrintableLine(line) << '\n';
}

bool Add(const std::string& given, const WatchArguments& arguments)
{
    WatchedSource source;
    source.path = PathOf(given);
    source.as = arguments.as == "discussion" ? ImportOptions::As::kDiscussion : ImportOptions::As::kMail;
    source.into = arguments.into.empty() ? "" : DatabasePath(arguments.into);
    source.prune = arguments.prune;
    std::string why = WhyUnreadable(source.path);
    if (why.empty())
        why = WhyItChangesItself(source);
    if (!why.empty()) {
        (void)Fail(source.path + ": cannot be watched: " + why);
        return false;
    }
    const AddedSource added = AddToWatchList(source);
    if (added.outcome == AddedSource::Outcome::kFailed) {
        (void)Fail(TakeFailedWrite());
        return false;
    }
    Tell(source, added);
    return true;
}

bool Remove(const std::string& given)
{
    const std::string path = PathOf(given);
    switch (RemoveFromWatchList(path)) {
    case RemovedSource::kRemoved:
        std::cout << PrintableLine(path) << ": not watched any more; its notes stay\n";
        return true;
    case RemovedSource::kNotListed:
        (void)Fail(path + ": is not watched; pavex watch lists what is");
        return false;
    case RemovedSource::kFailed:
        (void)Fail(TakeFailedWrite());
        return false;
    }
    return false;
}

int Change(const WatchArguments& arguments)
{
    bool all = true;
    for (const std::string& source : arguments.sources)
        all = (arguments.remove ? Remove(source) : Add(source, arguments)) && all;
    if (!arguments.remove)
        TellWhatIsMissing(ReadWatchList(), LoadReadRecords(CurrentPlaces().data));
    return all ? kExitDone : kExitFailed;
}

std::string StateOf(const WatchedSource& source, const ReadRecord& record)
{
    std::error_code none;
    std::string state = record.read.empty() ? "not read yet" : "read " + record.read;
    if (record.rejected != 0)
        state += ", " + std::to_string(record.rejected) + " rejected (pavex import shows why)";
    if (!fs::exists(source.path, none))
        state += "; is not there";
    else if (!record.error.empty())
        state += "; " + record.error;
    return state;
}

OrderedJson JsonOf(const WatchedSource& source, const ReadRecord& record)
{
    const auto textOrNull = [](const std::string& text) { return text.empty() ? OrderedJson() : OrderedJson(text); };
    std::error_code none;
    return {{"source", source.path},
            {"as", NameOf(source.as)},
            {"into", textOrNull(source.into)},
            {"prune", source.prune},
            {"exists", fs::exists(source.path, none)},
            {"read", textOrNull(record.read)},
            {"rejected", record.rejected},
            {"error", textOrNull(record.error)}};
}

void PrintJson(const WatchList& list, ReadRecords records)
{
    OrderedJson sources = OrderedJson::array();
    for (const WatchListEntry& entry : list.entries)
        sources.push_back(JsonOf(entry.source, records[entry.source.path]));
    const OrderedJson json{{"running", SomebodyWatches()}, {"sources", sources}, {"problems", list.problems}};
    std::cout << TextOfJson(json) << '\n';
}

ReadRecord RecordOf(const WatchedSource& source, const ReadRecords& records)
{
    const auto found = records.find(source.path);
    return found != records.end() ? found->second : ReadRecord();
}

void PrintText(const WatchList& list, const ReadRecords& records)
{
    if (list.entries.empty())
        std::cout << "no sources are watched; pavex watch SOURCE adds one\n";
    for (const WatchListEntry& entry : list.entries)
        std::cout << PrintableLine(entry.source.path + TextOfOptions(entry.source)) << ": "
                  << StateOf(entry.source, RecordOf(entry.source, records)) << '\n';
    TellWhatIsMissing(list, records);
}

// A list with bad entries is shown, and the command fails.
int List(bool json)
{
    const WatchList list = ReadWatchList();
    const ReadRecords records = LoadReadRecords(CurrentPlaces().data);
    if (json)
        PrintJson(list, records);
    else
        PrintText(list, records);
    for (const std::string& problem : list.problems)
        (void)Fail(problem);
    return list.problems.empty() ? kExitDone : kExitFailed;
}

int RunWatch(const WatchArguments& arguments)
{
    if (arguments.sources.empty() && !arguments.remove)
        return List(arguments.json);
    if (arguments.sources.empty() || arguments.json) {
        (void)Fail(arguments.json ? "--json is for the list, which takes no SOURCE"
                                  : "--remove needs a SOURCE; pavex watch lists them");
        return kExitWrongUse;
    }
    return Change(arguments);
}

}  // namespace

CommandFunction ConfigureWatch(CLI::App& options)
{
    const auto arguments = std::make_shared<WatchArguments>();
    CLI::Option* const sources = options.add_option(
        "SOURCE", arguments->sources,
        "what pavex import reads: mailboxes, Maildirs, calendars, contact files, or folders; none: list them");
    CLI::Option* const as =
        options.add_option("--as", arguments->as, "what messages become: mail, or postings of a discussion")
            ->check(CLI::IsMember({"mail", "discussion"}));
    CLI::Option* const into = options
                                  .add_option("--into", arguments->into,
                                              "the database to write; default: by what an entry is, as with import")
                                  ->type_name("FILE.vlt");
    CLI::Option* const prune = options.add_flag("--prune", arguments->prune, "delete notes whose source entry is gone");
    CLI::Option* const list = options.add_flag("--list", arguments->list, "list the sources");
    CLI::Option* const remove =
        options.add_flag("--remove", arguments->remove, "take the sources off the list; their notes stay");
    options.add_flag("--json", arguments->json, "print the list as one JSON object");
    for (CLI::Option* const option : {as, into, prune})
        option->needs(sources);
    for (CLI::Option* const option : {as, into, prune, list})
        remove->excludes(option);
    list->excludes(sources);
    return [arguments] { return RunWatch(*arguments); };
}

}  // namespace pavex
