// client/watch/tree_state.cpp: whether a source changed that tells nothing of its changes.
#include "client/watch/tree_state.h"

#include <sys/stat.h>

#include <filesystem>

#include "client/import/source_walk.h"

namespace pavex {

namespace {

uint64_t Mixed(uint64_t state, uint64_t value)
{
    state = (state ^ value) * 0x9E3779B97F4A7C15U;
    return state ^ (state >> 29);
}

uint64_t StateOfFile(const std::string& path)
{
    struct stat info {};
    if (stat(path.c_str(), &info) != 0 || S_ISDIR(info.st_mode))
        return 0;
#ifdef __APPLE__
    const timespec modified = info.st_mtimespec;
#else
    const timespec modified = info.st_mtim;
#endif
    uint64_t state = std::hash<std::string>()(path);
    for (const uint64_t value :
         {static_cast<uint64_t>(info.st_ino), static_cast<uint64_t>(info.st_size),
          static_cast<uint64_t>(modified.tv_sec), static_cast<uint64_t>(modified.tv_nsec), uint64_t{info.st_mode}})
        state = Mixed(state, value);
    return state;
}

}  // namespace

uint64_t TreeStateOf(const std::string& path, const std::function<bool()>& goOn)
{
    uint64_t state = StateOfFile(path);
    WalkHandler handler;
    handler.unreadable = [](const std::string&, const std::string&) {};
    handler.folder = [&](const std::string& folder, bool entered) {
        if (!entered)
            return goOn();
        std::error_code failure;
        // A sum: the listing has no order.
        for (std::filesystem::directory_iterator entry(folder, failure), end; !failure && entry != end;
             entry.increment(failure))
            state += IsSourceName(entry->path().filename().string()) ? StateOfFile(entry->path().string()) : 0;
        state += std::hash<std::string>()(folder);
        return goOn();
    };
    if (std::error_code none; std::filesystem::is_directory(path, none))
        (void)WalkSource(path, handler);
    return state;
}

}  // namespace pavex
