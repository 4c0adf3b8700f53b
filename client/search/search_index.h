// client/search/search_index.h: the search engine's index of one home: kept up to date, and asked.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "client/search/configuration.h"
#include "client/search/kinds.h"

namespace pavex {

struct SearchHit {
    const SearchKind* kind = nullptr;
    std::string url;
    std::string title;
    std::string stamp;                // of the note's date, as StampFromUnix prints it; empty: none
    std::vector<std::string> people;  // authors, then recipients
    std::string metafile;             // native path
};

struct SearchAnswer {
    std::vector<SearchHit> hits;     // newest first
    std::vector<std::string> terms;  // what was looked for, as the index has it
};

// True when there is, or was, a metafile: the first one makes the folder.
bool HasMetadata(const SearchFolders& folders);

// Writes the settings and reads new and changed metafiles into the index; nothing is started when no folder
// changed since the last time.  An index that turns out to be damaged is built anew, once.  Waits while another
// process does the same.  False, with *error.
//   onWork  called when that takes time: metafiles are to be read, or another process reads them.
bool UpdateIndex(const SearchFolders& folders, std::string* error, const std::function<void()>& onWork = nullptr);

struct IndexQuestion {
    std::string query;     // from BuildQuery
    std::string language;  // from StemmingLanguage
    unsigned limit = 0;    // no more hits than these
    // A damaged index is built anew, once.  Of no use after UpdateIndex has failed.
    bool mayRebuild = true;
    std::function<void()> onRebuild = nullptr;  // called before
};

// Waits while the index is being brought up to date.  False, with *error; no hit is no failure.
bool AskIndex(const SearchFolders& folders, const IndexQuestion& question, SearchAnswer* answer, std::string* error);

// Takes what the engine prints, line by line.
class AnswerReader {
public:
    void AddLine(const std::string& line);
    // The engine found that it cannot read its index.
    bool IsUnread() const { return isUnread_; }
    SearchAnswer Take() { return std::move(answer_); }

private:
    enum class Part { kBefore, kCount, kHits };
    Part part_ = Part::kBefore;
    bool isUnread_ = false;
    SearchAnswer answer_;
};

// The entries of a list of people: parts between commas, quoted ones left whole.
std::vector<std::string> SplitPeople(const std::string& list);

}  // namespace pavex
