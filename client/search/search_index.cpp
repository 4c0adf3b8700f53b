// client/search/search_index.cpp: asks the search engine.
#include "client/search/search_index.h"

#include <sstream>

#include "client/search/index_lock.h"
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
// What it says where more words begin as asked than it looks for (maxTermExpand and maxXapianClauses in recoll.conf).
constexpr std::string_view kTooManyWords = "Query setup failed: Maximum";

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
        part_ = Part::kHits;
        break;
    case Part::kHits:
        if (SearchHit hit = HitOf(FieldsOfLine(line)); hit.kind != nullptr && !hit.url.empty())
            answer_.hits.push_back(std::move(hit));
        break;
    }
}

bool AskIndex(const SearchFolders& folders, const std::string& query, const std::string& language, unsigned limit,
              SearchAnswer* answer, std::string* error)
{
    const Descriptor lock = LockIndex(folders, false, error);
    if (!lock.IsOpen())
        return false;
    AnswerReader reader;
    const ProcessResult result = RunProcess({"recollq", "-c", folders.home, "-s", language, "-S", "pavexdate", "-D",
                                             "-n", std::to_string(limit), "-F", kFields, query},
                                            [&reader](const std::string& line) { reader.AddLine(line); });
    if (result.exit != 0 && result.output.find(kNothingAsked) != std::string::npos) {
        *answer = SearchAnswer{};
        return true;
    }
    if (result.exit != 0 && result.output.find(kTooManyWords) != std::string::npos) {
        *error = "too many different words begin so; write more of the letters before the asterisk";
        return false;
    }
    if (DescribeFailure("recollq", result, error))
        return false;
    *answer = reader.Take();
    return true;
}

}  // namespace pavex
