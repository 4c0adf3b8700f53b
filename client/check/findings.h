// client/check/findings.h: what a check found, counted by what it is, with some examples of each.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace pavex {

enum class Finding : size_t {
    kDatabase,     // cannot be read
    kCopies,       // of one database, in several slots
    kDamagedNote,  // in a database
    kRecord,       // of progress, damaged
    kRecordAhead,  // of its database
    kStrayRecord,  // without a database
    kFolder,       // of metafiles, cannot be read
    kMissing,      // metafile
    kOutdated,     // metafile
    kDamagedFile,  // metafile
    kOtherKind,    // metafile, of a kind that the note is not
    kLeftOut,      // metafile of a note that is not to be indexed
    kNoNote,       // metafile of a note that is not there
    kNoDatabase,   // metafile of a database that is not indexed
    kStrayFile,    // named as no note's metafile is
    kHalfWritten,
    kCount,
};

// What --repair does about it.
enum class Remedy { kNone, kIndexNote, kIndexDatabase, kEmptyRecord, kRemoveFile };

struct FindingText {
    Finding finding;
    const char* name;  // in JSON
    const char* one;   // "1 note without a metafile"
    const char* many;  // "2 notes without a metafile"
    Remedy remedy;
};
const FindingText& TextOf(Finding finding);

// Where it was found; what does not apply is empty or zero.
struct Example {
    std::string database{};  // native path
    uint32_t note = 0;
    std::string url{};
    std::string file{};    // native path
    std::string reason{};  // what is wrong, in words that follow a colon
};

class CheckReport {
public:
    explicit CheckReport(size_t mostExamples) : mostExamples_(mostExamples) {}

    struct Group {
        uint64_t count = 0;
        uint64_t repaired = 0;
        std::vector<Example> examples{};  // the first
    };

    void Add(Finding finding, Example example);
    void AddRepaired(Finding finding, uint64_t count = 1);
    // Something else that the user must know, in one sentence without a full stop.
    void AddRemark(std::string text) { remarks_.push_back(std::move(text)); }

    const Group& Of(Finding finding) const { return groups_[static_cast<size_t>(finding)]; }
    const std::vector<std::string>& Remarks() const { return remarks_; }
    uint64_t Found() const;
    uint64_t Repaired() const;
    // Of what was found, how much a repair can put right.
    uint64_t Repairable() const;
    // True when a coming pass of the add-in must finish what a repair began.
    bool NeedsPass() const;

    uint64_t databases = 0;
    uint64_t notes = 0;      // live ones in the databases that could be read
    uint64_t metafiles = 0;  // that carry the name of a note
    uint64_t waiting = 0;    // notes that the next pass takes, with or without a repair

private:
    size_t mostExamples_;
    std::array<Group, static_cast<size_t>(Finding::kCount)> groups_;
    std::vector<std::string> remarks_;
};

}  // namespace pavex
