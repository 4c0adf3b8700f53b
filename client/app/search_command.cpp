// client/app/search_command.cpp: pavex search: asks the desktop search engine for notes.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <set>

#include "client/app/command.h"
#include "client/app/indexing_state.h"
#include "client/app/last_search.h"
#include "client/app/progress_line.h"
#include "client/app/search_folders.h"
#include "client/app/search_report.h"
#include "client/foundation/languages.h"
#include "client/search/query.h"
#include "client/search/search_index.h"
#include "client/store/timedate.h"

namespace pavex {

namespace {

constexpr unsigned kDefaultLimit = 20;
constexpr unsigned kGreatestLimit = 100000;

struct SearchArguments {
    std::vector<std::string> words;
    std::string kind;
    std::string from;
    std::string after;
    std::string before;
    unsigned limit = kDefaultLimit;
    bool json = false;
};

// A bare date is the beginning of that day where the user is.
std::optional<int64_t> UnixFromDate(const std::string& text)
{
    const std::optional<TIMEDATE> time = TimeFromIso(text);
    const std::optional<int64_t> seconds = time ? UnixFromTime(*time) : std::nullopt;
    if (!seconds || text.find('T') != text.npos)
        return seconds;
    const std::time_t midnight = *seconds;
    std::tm parts{};
    if (gmtime_r(&midnight, &parts) == nullptr)
        return std::nullopt;
    parts.tm_isdst = -1;
    return std::mktime(&parts);
}

std::string WhyNoDate(const std::string& text)
{
    return UnixFromDate(text) ? std::string() : "\"" + text + "\" is no date; write 2007-03-05 or 2007-03-05T14:00:00Z";
}

std::string WhyNoName(const std::string& text)
{
    SearchRequest request;
    request.words = {text};
    return BuildQuery(request, {}).empty() ? "there is no name to look for in \"" + text + "\"" : std::string();
}

SearchRequest RequestOf(const SearchArguments& arguments)
{
    SearchRequest request;
    request.words = arguments.words;
    request.kind = FindKindByName(arguments.kind);
    request.from = arguments.from;
    request.after = UnixFromDate(arguments.after);
    request.before = UnixFromDate(arguments.before);
    return request;
}

// A mistake that is easily made: no note can be of such a time.
std::string WhyNothing(const SearchArguments& arguments)
{
    return HasNoTime(RequestOf(arguments)) && !arguments.after.empty() && !arguments.before.empty()
               ? ": --after " + arguments.after + " is no earlier than --before " + arguments.before
               : std::string();
}

int Report(const SearchArguments& arguments, const SearchAnswer& answer)
{
    const std::vector<SearchResult> results = ReadResults(answer);
    std::vector<std::string> urls;
    urls.reserve(results.size());
    for (const SearchResult& result : results)
        urls.push_back(result.hit.url);
    const int whyNotKept = KeepLastSearch(urls) ? 0 : errno;
    if (results.empty())
        std::cerr << "pavex: nothing found" << WhyNothing(arguments) << '\n';
    else if (arguments.json)
        PrintResultsAsJson(results, answer.terms);
    else
        PrintResults(results, answer.terms);
    return whyNotKept == 0 ? kExitDone
                           : Fail(std::string("cannot keep the results for pavex open: ") + std::strerror(whyNotKept));
}

// Sorting is what takes time when a word stands in very many notes.  The newest of all are the newest of the last
// year, or the last few, before the last moment that is asked for, if there are enough of those.
//   question  all of it but the query.
bool AskNewest(const SearchFolders& folders, const SearchRequest& request, IndexQuestion question, SearchAnswer* answer,
               std::string* error)
{
    constexpr int64_t kYear = int64_t{366} * 86400;
    constexpr int kYears[] = {1, 5};
    const std::set<std::string> fields = ReadFieldNames(folders);
    const int64_t end = request.before.value_or(std::time(nullptr));
    for (const int years : kYears) {
        SearchRequest recent = request;
        recent.after = end - years * kYear;
        if (request.after && *request.after >= *recent.after)
            break;
        question.query = BuildQuery(recent, fields);
        if (!AskIndex(folders, question, answer, error))
            return false;
        if (answer->hits.size() >= question.limit)
            return true;
    }
    question.query = BuildQuery(request, fields);
    return AskIndex(folders, question, answer, error);
}

// What an index holds that could not be brought up to date is still worth having.
int Ask(const SearchFolders& folders, const SearchRequest& request, const SearchArguments& arguments)
{
    std::string whyOld;
    std::string error;
    SearchAnswer answer;
    std::optional<ProgressLine> progress(true);
    const auto tell = [&progress] { progress->Show("reading new and changed notes for the search..."); };
    const bool isUpToDate = UpdateIndex(folders, &whyOld, tell);
    const IndexQuestion question{.query = "",
                                 .language = StemmingLanguage(cf::CurrentLanguages().languages),
                                 .limit = arguments.limit,
                                 .mayRebuild = isUpToDate,
                                 .onRebuild = tell};
    const bool isAsked = HasNoTime(request) || AskNewest(folders, request, question, &answer, &error);
    progress.reset();
    if (!isAsked)
        return Fail(isUpToDate ? error : whyOld);
    const int exit = Report(arguments, answer);
    return isUpToDate ? exit : Fail("the search index is not up to date: " + whyOld);
}

int RunSearch(const SearchArguments& arguments)
{
    const SearchFolders folders = FoldersOfHome();
    const SearchRequest request = RequestOf(arguments);
    if (BuildQuery(request, ReadFieldNames(folders)).empty()) {
        (void)Fail("there is no word to look for");
        return kExitWrongUse;
    }
    if (!HasMetadata(folders))
        return Fail("nothing is indexed yet: " + HowToIndex(ReadSlots()));
    return Ask(folders, request, arguments);
}

std::vector<std::string> KindNames()
{
    std::vector<std::string> names;
    names.reserve(kSearchKinds.size());
    for (const SearchKind& kind : kSearchKinds)
        names.emplace_back(kind.name);
    return names;
}

}  // namespace

CommandFunction ConfigureSearch(CLI::App& options)
{
    const auto arguments = std::make_shared<SearchArguments>();
    options.add_option("--kind", arguments->kind, "notes of this kind only")->check(CLI::IsMember(KindNames()));
    options.add_option("--from", arguments->from, "notes of this author only")->type_name("NAME")->check(WhyNoName);
    options.add_option("--after", arguments->after, "notes of this date or later")->type_name("DATE")->check(WhyNoDate);
    options.add_option("--before", arguments->before, "notes before this date")->type_name("DATE")->check(WhyNoDate);
    options.add_option("--limit", arguments->limit, "at most this many results")
        ->capture_default_str()
        ->check(CLI::Range(1U, kGreatestLimit));
    options.add_flag("--json", arguments->json, "print JSON, one object a line");
    options
        .add_option("WORDS", arguments->words, "words that the notes hold; one with blanks is looked for as it stands")
        ->required();
    return [arguments] { return RunSearch(*arguments); };
}

}  // namespace pavex
