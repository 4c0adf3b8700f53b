// client/search/search_index.cpp: asks the search engine.
#include "client/search/search_index.h"

#include <sstream>

#include "client/search/index_damage.h"
#include "client/search/index_lock.h"
#include "client/search/index_update.h"
#include "client/search/marked_text.h"
#include "client/search/process.h"
#include "client/search/tool_failure.h"

namespace pavex {

namespace {

// What is asked for of each hit, in this order.
constexpr const char* kFields = "url mtype pavexdate uri title author recipient";
enum Field : size_t { kFile, kMediaType, kDate, kUri, kTitle, kAuthor, kRecipient, kFieldCount };
constexpr std::string_view kAccount = "Recoll query: ";
// What the engine says of a query of which it keeps no term.
constexpr std::string_view kNothingAsked = "null query";
// What it says where more words begin as asked than it looks for (maxTermExpand in recoll.conf, and its own bound on
// the whole query).
constexpr std::string_view kTooManyWords = "Query setup failed: Maximum";

// What it says of an index that it cannot open, and in place of how many notes it found where it cannot read it.
constexpr std::string_view kUnopened = "Cant open database";
constexpr std::string_view kUnread = "-1 results";
constexpr int kLastStatus = 128;  // beyond: a signal ended it

int ValueOfDigit(char c)
{
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const size_t value = kDigits.find(c);
    return value == kDigits.npos ? -1 : static_cast<int>(value);
}

std::string FromBase64(std::string_view text)
{
    std::string bytes;
    unsigned bits = 0;
    int count = 0;
    for (const char c : text) {
        const int value = ValueOfDigit(c);
        if (value < 0)
            break;  // padding
        bits = (bits << 6) | static_cast<unsigned>(value);
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes += static_cast<char>((bits >> count) & 0xFF);
        }
    }
    return bytes;
}

std::vector<std::string> FieldsOfLine(const std::string& line)
{
    std::vector<std::string> fields;
    std::istringstream stream(line);
    for (std::string field; std::getline(stream, field, ' ');)
        fields.push_back(FromBase64(field));
    fields.resize(kFieldCount);
    return fields;
}

SearchHit HitOf(const std::vector<std::string>& fields)
{
    constexpr std::string_view kFileScheme = "file://";
    SearchHit hit;
    hit.kind = FindKindByMediaType(fields[kMediaType]);
    hit.url = fields[kUri];
    hit.title = fields[kTitle];
    hit.stamp = fields[kDate];
    hit.people = SplitPeople(fields[kAuthor]);
    for (const std::string& recipient : SplitPeople(fields[kRecipient]))
        hit.people.push_back(recipient);
    if (fields[kFile].starts_with(kFileScheme))
        hit.metafile = fields[kFile].substr(kFileScheme.size());
    return hit;
}

enum class Asking { kDone, kFailed, kDamaged };

// kDamaged: a new index would do; *error says what is wrong.  The lock is the caller's.
Asking Ask(const SearchFolders& folders, const Descriptor& lock, const IndexQuestion& question, SearchAnswer* answer,
           std::string* error)
{
    AnswerReader reader;
    const ProcessResult result = RunProcess(
        {"recollq", "-c", folders.home, "-s", question.language, "-S", "pavexdate", "-D", "-n",
         std::to_string(question.limit), "-F", kFields, question.query},
        [&reader](const std::string& line) { reader.AddLine(line); }, lock.Get());
    const auto says = [&result](std::string_view text) { return result.output.find(text) != result.output.npos; };
    if (result.exit != 0 && says(kNothingAsked)) {
        *answer = SearchAnswer{};
        return Asking::kDone;
    }
    if (result.exit != 0 && says(kTooManyWords)) {
        *error = "too many different words begin so; write more of the letters before the asterisk";
        return Asking::kFailed;
    }
    const bool hasFailed = DescribeFailure("recollq", result, error);
    if (!hasFailed && !reader.IsUnread()) {
        *answer = reader.Take();
        return Asking::kDone;
    }
    if (!hasFailed)
        *error = "recollq cannot read the search index; its log: " + QueryLog(folders);
    const bool isUnopened = reader.IsUnread() || says(kUnopened);
    if (!isUnopened && result.exit <= kLastStatus)
        return Asking::kFailed;
    const std::string obstacle = FindObstacle(folders, result, QueryLog(folders));
    if (obstacle.empty())
        return Asking::kDamaged;
    *error = (isUnopened ? "the search index cannot be read, nor built anew: " : "recollq failed: ") + obstacle;
    return Asking::kFailed;
}

}  // namespace

std::vector<std::string> SplitPeople(const std::string& list)
{
    std::vector<std::string> people(1);
    bool isQuoted = false;
    for (const char c : list) {
        if (c == '"')
            isQuoted = !isQuoted;
        if (c == ',' && !isQuoted)
            people.emplace_back();
        else if (c != ' ' || !people.back().empty())
            people.back() += c;
    }
    std::erase(people, std::string());
    return people;
}

void AnswerReader::AddLine(const std::string& line)
{
    switch (part_) {
    case Part::kBefore:
        if (line.starts_with(kAccount)) {
            answer_.terms = TermsOfQuery(std::string_view(line).substr(kAccount.size()));
            part_ = Part::kCount;
        }
        break;
    case Part::kCount:
        isUnread_ = line.starts_with(kUnread);
        part_ = Part::kHits;
        break;
    case Part::kHits:
        if (SearchHit hit = HitOf(FieldsOfLine(line)); hit.kind != nullptr && !hit.url.empty())
            answer_.hits.push_back(std::move(hit));
        break;
    }
}

bool AskIndex(const SearchFolders& folders, const IndexQuestion& question, SearchAnswer* answer, std::string* error)
{
    Descriptor lock = LockIndex(folders, false, error);
    if (!lock.IsOpen())
        return false;
    Asking asking = Ask(folders, lock, question, answer, error);
    if (asking != Asking::kDamaged || !question.mayRebuild)
        return asking == Asking::kDone;
    (void)lock.Close();
    lock = LockIndex(folders, true, error);
    if (!lock.IsOpen())
        return false;
    // another process may have built it anew meanwhile
    asking = Ask(folders, lock, question, answer, error);
    if (asking == Asking::kDamaged && question.onRebuild)
        question.onRebuild();
    if (asking == Asking::kDamaged && RebuildIndex(folders, lock, error))
        asking = Ask(folders, lock, question, answer, error);
    return asking == Asking::kDone;
}

}  // namespace pavex
