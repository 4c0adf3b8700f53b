// client/app/explain_command.cpp: pavex explain: why a note is findable, or is not.
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "client/app/command.h"
#include "client/app/indexing_state.h"
#include "client/app/json_output.h"
#include "client/app/log_failures.h"
#include "client/app/note_finder.h"
#include "client/app/note_target.h"
#include "client/app/note_text.h"
#include "client/app/search_folders.h"
#include "client/app/terminal_text.h"
#include "client/check/explain.h"
#include "client/foundation/host.h"
#include "client/search/index_damage.h"
#include "client/search/search_index.h"
#include "client/store/engine.h"
#include "client/store/note_link.h"
#include "client/store/timedate.h"

namespace pavex {

namespace {

using OrderedJson = nlohmann::ordered_json;

struct ExplainArguments {
    std::string target;
    std::string database;
    bool json = false;
};

// A note, or what is left of one.
struct Place {
    std::string database;  // native path
    uint32_t note = 0;
};

constexpr const char* kStateNames[] = {"good", "missing", "outdated", "damaged"};

// ---- which note is meant ------------------------------------------------------------------------

// By its universal id, deleted notes too.  replica: null for that of any database.
bool FindPlace(const UNID& unid, const TIMEDATE* replica, Place* place, std::string* error)
{
    *error = replica != nullptr ? "no database here has the replica id " + HexFromId(*replica)
                                : "no database here has a note " + HexFromUnid(unid);
    KnownDatabases known = FindKnownDatabases();
    for (const std::string& file : known.files) {
        std::unique_ptr<Database> database;
        if (const STATUS status = Database::Open(file, &database); status != 0) {
            if (status != kStatusNoSuchFile)
                known.unread.push_back(file + ": " + DescribeStatus(status));
            continue;
        }
        if (replica != nullptr && !IsReplica(*database, *replica))
            continue;
        const STATUS status = database->engine().FindUnid(unid, &place->note);
        place->database = file;
        if (status == 0)
            return true;
        if (replica != nullptr)
            *error = file + ": " + DescribeStatus(status) + " " + HexFromUnid(unid);
    }
    *error += NotLookedInto(known);
    return false;
}

// An id or a universal id of a database that was named.
bool FindIn(const std::string& path, const std::string& name, Place* place, std::string* error)
{
    std::unique_ptr<Database> database;
    place->database = path;
    if (const STATUS status = Database::Open(path, &database); status != 0) {
        *error = path + ": " + DescribeStatus(status);
        return false;
    }
    if (const std::optional<UNID> unid = UnidFromHex(name)) {
        if (const STATUS status = database->engine().FindUnid(*unid, &place->note); status == 0)
            return true;
    } else if (const std::optional<uint32_t> id = NoteIdFromText(name)) {
        place->note = *id;
        return true;
    }
    *error = path + ": no such note " + name;
    return false;
}

bool FindTarget(const ExplainArguments& arguments, Place* place, std::string* error)
{
    const std::string& target = arguments.target;
    if (!arguments.database.empty() && target.find(':') == target.npos)
        return FindIn(DatabasePath(arguments.database), target, place, error);
    if (const std::optional<UNID> unid = UnidFromHex(target))
        return FindPlace(*unid, nullptr, place, error);
    const std::optional<std::string> url = UrlOfTarget(target, error);
    if (!url)
        return false;
    const std::optional<NOTELINK> link = LinkFromUrl(*url);
    if (link)
        return FindPlace(link->note, &link->replica, place, error);
    *error = target +
             " is no address of a note (Pavex:///...), no universal id, and no number of a search result; an id "
             "needs its database (--db)";
    return false;
}

// ---- the search engine --------------------------------------------------------------------------

// As a search does: what an index holds that could not be brought up to date counts.  None when the engine cannot
// tell.  *error says why the index cannot be asked or is not up to date.
std::optional<bool> IsInEngine(const NoteFacts& facts, std::string* error)
{
    const SearchFolders folders = FoldersOfHome();
    constexpr unsigned kMostHits = 100;
    SearchAnswer answer;
    std::string whyOld;
    const bool isUpToDate = UpdateIndex(folders, &whyOld);
    const IndexQuestion question{.query = "uri:\"" + HexFromUnid(facts.unid) + "\"",
                                 .language = "",
                                 .limit = kMostHits,
                                 .mayRebuild = isUpToDate};
    const bool isAsked = AskIndex(folders, question, &answer, error);
    if (!isUpToDate)
        *error = isAsked ? "the search index is not up to date: " + whyOld : whyOld;
    for (const SearchHit& hit : answer.hits)
        if (hit.url == facts.url)
            return true;
    return isAsked && isUpToDate ? std::optional(false) : std::nullopt;
}

// ---- the answer ---------------------------------------------------------------------------------

struct Answer {
    NoteFacts facts;
    SearchFacts search;
    std::string engineError;  // why the search engine cannot tell, or tells of an old index
    std::string title;
    std::vector<std::string> log;
    Explanation explanation;
};

std::string TitleOf(const Place& place)
{
    std::unique_ptr<Database> database;
    Note note;
    return Database::Open(place.database, &database) == 0 && database->Get(place.note, &note) == 0 ? TitleOfNote(note)
                                                                                                   : std::string();
}

std::string WhyNoPass()
{
    std::string why = WhyNothingIsIndexed(ReadSlots());
    return why.empty() && RunsOnBattery() ? "indexing waits while the computer runs on battery" : why;
}

// False when the note is not even there.
bool FindAnswer(const Place& place, Answer* answer, std::string* error)
{
    const std::string metadata = MetadataFolder(CurrentPlaces().caches);
    if (const STATUS status = GatherNoteFacts(place.database, place.note, metadata, &answer->facts); status != 0) {
        *error = place.database + ": note " + std::to_string(place.note) + ": " + DescribeStatus(status);
        return false;
    }
    answer->search.whyNoPass = WhyNoPass();
    answer->search.engineLog = IndexingLog(FoldersOfHome());
    if (answer->facts.found != nullptr)
        answer->search.isInEngine = IsInEngine(answer->facts, &answer->engineError);
    answer->search.whyUnknown = answer->engineError;
    answer->title = TitleOf(place);
    if (answer->facts.record)
        answer->log = LastFailures(answer->facts.record->path, place.note);
    answer->explanation = Explain(answer->facts, answer->search);
    return true;
}

// Of the note's metafile, or of the file that is found in its place.
std::string StateOf(const NoteFacts& facts)
{
    const bool isWanted = facts.state == NoteState::kLive && facts.fate.fate == Fate::kIndexed && facts.record;
    if (facts.found == nullptr && facts.file.state == FileState::kMissing)
        return isWanted && !facts.isWaiting ? "missing" : "none";
    if (facts.found != nullptr && (!isWanted || facts.file.state == FileState::kMissing))
        return "left-over";
    return kStateNames[static_cast<size_t>(facts.file.state)];
}

void PrintJson(const Answer& answer)
{
    const NoteFacts& facts = answer.facts;
    const auto orNull = [](const std::string& text) { return text.empty() ? OrderedJson() : OrderedJson(text); };
    OrderedJson json{{"findable", answer.explanation.isFindable},
                     {"reason", answer.explanation.reason},
                     {"text", answer.explanation.text},
                     {"url", orNull(facts.url)},
                     {"database", facts.database},
                     {"noteid", facts.id},
                     {"title", orNull(answer.title)},
                     {"kind", orNull(facts.fate.kind != nullptr ? facts.fate.kind->name : "")},
                     {"indexed_database", facts.record.has_value()},
                     {"waiting", facts.isWaiting},
                     {"metafile", orNull(facts.path)},
                     {"metafile_state", StateOf(facts)},
                     {"in_search_index", nullptr},
                     {"log", answer.log}};
    if (answer.search.isInEngine)
        json["in_search_index"] = *answer.search.isInEngine;
    std::cout << TextOfJson(json) << '\n';
}

void PrintLine(const char* name, const std::string& text)
{
    if (!text.empty())
        std::cout << "    " << name << PrintableLine(text) << '\n';
}

std::string EngineLine(const Answer& answer)
{
    if (answer.facts.found == nullptr)
        return {};
    if (!answer.search.isInEngine)
        return "the search engine cannot tell: " + answer.engineError;
    if (!*answer.search.isInEngine)
        return "the search engine does not have it";
    return "the search engine has it" + (answer.engineError.empty() ? "" : "; " + answer.engineError);
}

std::string RecordLine(const NoteFacts& facts)
{
    if (!facts.record)
        return "not among the indexed ones";
    const std::string upTo = facts.record->since == 0 ? "" : IsoFromTime(TimeFromHundredths(facts.record->since));
    return upTo.empty() ? "no pass over it is complete" : "indexed up to " + upTo;
}

void PrintText(const Answer& answer)
{
    const NoteFacts& facts = answer.facts;
    std::cout << PrintableLine(answer.explanation.text) << '\n';
    PrintLine("note      ", "note " + std::to_string(facts.id) + (answer.title.empty() ? "" : ", " + answer.title));
    PrintLine("address   ", facts.url);
    PrintLine("database  ", facts.database + ", " + RecordLine(facts));
    const std::string state = StateOf(facts);
    PrintLine("metafile  ", state == "none" ? state : facts.path + ", " + state);
    PrintLine("search    ", EngineLine(answer));
    for (const std::string& entry : answer.log)
        PrintLine("log       ", entry);
}

int RunExplain(const ExplainArguments& arguments)
{
    Place place;
    Answer answer;
    std::string error;
    if (!FindTarget(arguments, &place, &error) || !FindAnswer(place, &answer, &error))
        return Fail(error);
    if (arguments.json)
        PrintJson(answer);
    else
        PrintText(answer);
    return kExitDone;
}

}  // namespace

CommandFunction ConfigureExplain(CLI::App& options)
{
    const auto arguments = std::make_shared<ExplainArguments>();
    options.add_option("--db", arguments->database, "the database of an id")->type_name("FILE.vlt");
    options.add_flag("--json", arguments->json, "print one JSON object");
    options.add_option("NOTE", arguments->target, "the note's URL, its number in the last search, or its id")
        ->required();
    return [arguments] { return RunExplain(*arguments); };
}

}  // namespace pavex
