// client/check/metafile_state.cpp: one note's metafile, held against the note.
#include "client/check/metafile_state.h"

#include <sys/stat.h>

#include <cerrno>
#include <optional>

#include "client/search/metafile.h"
#include "client/store/clock.h"
#include "client/store/timedate.h"

namespace pavex {

namespace {

constexpr uint64_t kHundredths = 100;
// Some file systems keep the time of a change in steps of two seconds.
constexpr uint64_t kSlack = 2 * kHundredths;

uint64_t StampOfFile(const struct stat& file)
{
    constexpr long kNanosecondsAHundredth = 10'000'000;
    return HundredthsOf(
        TimeFromUnix(file.st_mtim.tv_sec, static_cast<int>(file.st_mtim.tv_nsec / kNanosecondsAHundredth)));
}

uint64_t NowStamp()
{
    const uint64_t now = CurrentClock().NowHundredths();
    return HundredthsOf(TimeFromUnix(static_cast<int64_t>(now / kHundredths), static_cast<int>(now % kHundredths)));
}

// A stamp that is ahead of the clock says nothing: the clock was set back since.
bool IsOlder(const struct stat& file, const NoteRow& row)
{
    return row.stamp <= NowStamp() && StampOfFile(file) + kSlack < row.stamp;
}

// A metafile has the nearest time that it can hold.
bool CanBeHeld(int64_t seconds)
{
    constexpr int64_t kFirst = -62'135'596'800;  // 0001-01-01T00:00:00Z
    constexpr int64_t kLast = 253'402'300'799;   // 9999-12-31T23:59:59Z
    return seconds >= kFirst && seconds <= kLast;
}

}  // namespace

MetafileState StateOfMetafile(const std::string& path, const SearchKind& kind, const NoteRow& row,
                              const std::string& url)
{
    struct stat about {};
    if (lstat(path.c_str(), &about) != 0 && (errno == ENOENT || errno == ENOTDIR))
        return {FileState::kMissing, {}};
    const MetafileCheck check = CheckMetafile(path, kind, url);
    if (!check.damage.empty())
        return {FileState::kDamaged, check.damage};
    if (IsOlder(about, row))
        return {FileState::kOutdated, "it was written before the note's last change"};
    const std::optional<int64_t> modified = UnixFromTime(row.modified);
    if (check.modified && modified && CanBeHeld(*modified) && *check.modified != *modified)
        return {FileState::kOutdated, "it is of another state of the note"};
    return {};
}

}  // namespace pavex
