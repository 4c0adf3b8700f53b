// client/check/findings.cpp: what a check found.
#include "client/check/findings.h"

namespace pavex {

namespace {

constexpr FindingText kTexts[] = {
    {Finding::kDatabase, "database-unreadable", "database that cannot be read", "databases that cannot be read",
     Remedy::kNone},
    {Finding::kCopies, "database-copies", "database that is indexed more than once",
     "databases that are indexed more than once", Remedy::kNone},
    {Finding::kDamagedNote, "note-damaged", "note that is damaged in its database",
     "notes that are damaged in their databases", Remedy::kNone},
    {Finding::kRecord, "record-damaged", "damaged progress record", "damaged progress records", Remedy::kIndexDatabase},
    {Finding::kRecordAhead, "record-ahead", "progress record that is ahead of its database",
     "progress records that are ahead of their databases", Remedy::kIndexDatabase},
    {Finding::kStrayRecord, "record-stray", "progress record without a database", "progress records without a database",
     Remedy::kEmptyRecord},
    {Finding::kFolder, "folder-unreadable", "folder of metafiles that cannot be read",
     "folders of metafiles that cannot be read", Remedy::kNone},
    {Finding::kMissing, "metafile-missing", "note without a metafile", "notes without a metafile", Remedy::kIndexNote},
    {Finding::kOutdated, "metafile-outdated", "metafile that is older than its note",
     "metafiles that are older than their notes", Remedy::kIndexNote},
    {Finding::kDamagedFile, "metafile-damaged", "damaged metafile", "damaged metafiles", Remedy::kIndexNote},
    {Finding::kOtherKind, "metafile-other-kind", "metafile of a kind that its note is not",
     "metafiles of a kind that their notes are not", Remedy::kRemoveFile},
    {Finding::kLeftOut, "metafile-left-out", "metafile of a note that is not to be indexed",
     "metafiles of notes that are not to be indexed", Remedy::kRemoveFile},
    {Finding::kNoNote, "metafile-without-note", "metafile without a note", "metafiles without a note",
     Remedy::kRemoveFile},
    {Finding::kNoDatabase, "metafile-without-database", "metafile of a database that is not indexed",
     "metafiles of databases that are not indexed", Remedy::kRemoveFile},
    {Finding::kStrayFile, "metafile-stray", "metafile that is named as no note's is",
     "metafiles that are named as no note's are", Remedy::kRemoveFile},
    {Finding::kHalfWritten, "metafile-half-written", "half-written file", "half-written files", Remedy::kRemoveFile},
};
static_assert(
    [] {
        size_t index = 0;
        for (const FindingText& row : kTexts)
            if (static_cast<size_t>(row.finding) != index++)
                return false;
        return index == static_cast<size_t>(Finding::kCount);
    }(),
    "rows are found by their number");

}  // namespace

const FindingText& TextOf(Finding finding)
{
    return kTexts[static_cast<size_t>(finding)];
}

void CheckReport::Add(Finding finding, Example example)
{
    Group& group = groups_[static_cast<size_t>(finding)];
    ++group.count;
    if (group.examples.size() < mostExamples_)
        group.examples.push_back(std::move(example));
}

void CheckReport::AddRepaired(Finding finding, uint64_t count)
{
    groups_[static_cast<size_t>(finding)].repaired += count;
}

uint64_t CheckReport::Found() const
{
    uint64_t found = 0;
    for (const Group& group : groups_)
        found += group.count;
    return found;
}

uint64_t CheckReport::Repaired() const
{
    uint64_t repaired = 0;
    for (const Group& group : groups_)
        repaired += group.repaired;
    return repaired;
}

uint64_t CheckReport::Repairable() const
{
    uint64_t repairable = 0;
    for (const FindingText& text : kTexts)
        if (text.remedy != Remedy::kNone)
            repairable += Of(text.finding).count;
    return repairable;
}

bool CheckReport::NeedsPass() const
{
    for (const FindingText& text : kTexts)
        if ((text.remedy == Remedy::kIndexNote || text.remedy == Remedy::kIndexDatabase) &&
            Of(text.finding).repaired != 0)
            return true;
    return false;
}

}  // namespace pavex
