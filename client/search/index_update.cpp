// client/search/index_update.cpp: keeps the search engine's index up to date.
#include "client/search/index_update.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>

#include "client/search/file_text.h"
#include "client/search/index_damage.h"
#include "client/search/index_lock.h"
#include "client/search/process.h"
#include "client/search/search_index.h"
#include "client/search/tool_failure.h"
#include "client/store/descriptor.h"

namespace pavex {

namespace {

namespace fs = std::filesystem;

// A metafile is written beside and renamed, so its folder's time changes whenever a file comes, changes or goes.
struct FolderTimes {
    std::string text;  // every folder with its time: equal means that nothing changed
    std::time_t newest = 0;
};

FolderTimes ReadFolderTimes(const std::string& root)
{
    std::vector<std::string> folders = {root};
    std::error_code failed;
    for (fs::directory_iterator entry(root, failed), end; !failed && entry != end; entry.increment(failed))
        folders.push_back(entry->path().string());
    std::ranges::sort(folders);
    FolderTimes times;
    for (const std::string& folder : folders) {
        struct stat about {};
        if (stat(folder.c_str(), &about) != 0)
            continue;
        times.newest = std::max(times.newest, about.st_mtim.tv_sec);
        times.text +=
            folder + "\t" + std::to_string(about.st_mtim.tv_sec) + "." + std::to_string(about.st_mtim.tv_nsec) + "\n";
    }
    return times;
}

// The engine knows a changed file by its size and the second of its change: a file that is read must not change
// in that same second again.
void LetTheSecondPass(std::time_t newest)
{
    constexpr long kNanoseconds = 1000000000;
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    if (newest != now.tv_sec)
        return;
    const timespec rest{0, kNanoseconds - now.tv_nsec};
    nanosleep(&rest, nullptr);
}

std::string UpToDate(const SearchFolders& folders)
{
    return folders.home + "/up-to-date";
}

enum class Reading { kDone, kFailed, kDamaged };

// Reads the metafiles into the index.  kDamaged: a new index would do; *error says what is wrong, naming the log.
Reading ReadMetafiles(const SearchFolders& folders, const Descriptor& lock, const FolderTimes& times,
                      std::string* error)
{
    LetTheSecondPass(times.newest);
    // the engine holds the lock, too: it may outlive this process, and nobody else may write there then
    const ProcessResult result = RunProcess({"recollindex", "-c", folders.home}, nullptr, lock.Get());
    if (DescribeFailure("recollindex", result, error)) {
        if (result.error != 0)
            return Reading::kFailed;
        const std::string log = IndexingLog(folders);
        const std::string obstacle = FindObstacle(folders, result, log);
        *error = obstacle.empty() ? *error + "; its log: " + log : "recollindex failed: " + obstacle;
        return obstacle.empty() ? Reading::kDamaged : Reading::kFailed;
    }
    if (ReplaceFile(UpToDate(folders), times.text))
        return Reading::kDone;
    *error = "cannot write " + UpToDate(folders) + ": " + std::strerror(errno);
    return Reading::kFailed;
}

}  // namespace

bool HasMetadata(const SearchFolders& folders)
{
    std::error_code failed;
    return fs::is_directory(folders.metadata, failed);
}

bool RebuildIndex(const SearchFolders& folders, const Descriptor& lock, std::string* error)
{
    std::string why;
    if (WriteConfigurationAnew(folders, &why) &&
        ReadMetafiles(folders, lock, ReadFolderTimes(folders.metadata), &why) == Reading::kDone)
        return true;
    *error = "the search index was damaged and cannot be built anew: " + why;
    return false;
}

bool UpdateIndex(const SearchFolders& folders, std::string* error, const std::function<void()>& onWork)
{
    const Descriptor lock = LockIndex(folders, true, error, onWork);
    const FolderTimes times = ReadFolderTimes(folders.metadata);
    const auto isUpToDate = [&] { return ReadFileText(UpToDate(folders)) == times.text; };
    if (!lock.IsOpen())
        return isUpToDate();  // where nothing can be written, nothing need be
    if (!WriteConfiguration(folders, error))
        return false;
    if (isUpToDate())
        return true;
    if (onWork)
        onWork();
    const Reading reading = ReadMetafiles(folders, lock, times, error);
    return reading == Reading::kDone || (reading == Reading::kDamaged && RebuildIndex(folders, lock, error));
}

}  // namespace pavex
