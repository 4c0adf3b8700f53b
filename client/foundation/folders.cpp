// client/foundation/folders.cpp: file references and the user's caches folder.
// A reference has 80 bytes and no end of life.  A path that fits stands in it; a longer one is kept in a
// table for the rest of the process, which is small: references are made of folders, and folders are few.
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "client/foundation/host.h"
#include "client/foundation/url.h"

using namespace pavex::cf;

namespace {

// FSRef::hidden: a form byte, then the path with its NUL, or the path's place in the table.
enum Form : UInt8 { kFormNone = 0, kFormPath = 1, kFormPlace = 2 };
constexpr size_t kPathBytes = sizeof(FSRef) - 1;

class LongPaths {
public:
    uint64_t PlaceOf(const std::string& path)
    {
        const std::lock_guard lock(mutex_);
        const auto [found, added] = places_.try_emplace(path, paths_.size());
        if (added)
            paths_.push_back(&found->first);
        return found->second;
    }
    std::optional<std::string> At(uint64_t place)
    {
        const std::lock_guard lock(mutex_);
        if (place >= paths_.size())
            return std::nullopt;
        return *paths_[place];
    }

private:
    std::mutex mutex_;
    std::map<std::string, uint64_t> places_;  // guarded by mutex_
    std::vector<const std::string*> paths_;   // guarded by mutex_; the keys of places_
};

LongPaths& TheLongPaths()
{
    static LongPaths& paths = *new LongPaths;  // never freed: references may be read until the very end
    return paths;
}

void SetReference(const std::string& path, FSRef* ref)
{
    *ref = {};
    if (path.size() < kPathBytes) {
        ref->hidden[0] = kFormPath;
        std::memcpy(ref->hidden + 1, path.c_str(), path.size() + 1);
        return;
    }
    ref->hidden[0] = kFormPlace;
    const uint64_t place = TheLongPaths().PlaceOf(path);
    std::memcpy(ref->hidden + 1, &place, sizeof place);
}

std::optional<std::string> PathOf(const FSRef& ref)
{
    if (ref.hidden[0] == kFormPath) {
        const auto* text = reinterpret_cast<const char*>(ref.hidden + 1);
        return std::string(text, strnlen(text, kPathBytes));
    }
    if (ref.hidden[0] != kFormPlace)
        return std::nullopt;
    uint64_t place = 0;
    std::memcpy(&place, ref.hidden + 1, sizeof place);
    return TheLongPaths().At(place);
}

// The true path of an existing item, links followed.
std::optional<std::string> RealPath(const std::string& path)
{
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), &std::free);
    if (!real)
        return std::nullopt;
    return std::string(real.get());
}

std::mutex cachesMutex;
std::string cachesFolder;  // guarded by cachesMutex; written by SetCachesFolder

}  // namespace

void pavex::SetCachesFolder(const std::string& path)
{
    const std::lock_guard lock(cachesMutex);
    cachesFolder = path;
}

extern "C" {

Boolean CFURLGetFSRef(CFURLRef url, struct FSRef* fsRef)
{
    if (!url)
        return 0;
    const std::string path = As<Url>(url).ResolvedPath();
    std::optional<std::string> real = RealPath(path);
    // ".." of a folder that is not there names nothing to the kernel.  By its text it does; without that a
    // walk towards the root by CFURLCreateCopyDeletingLastPathComponent could miss every end.
    if (!real && path.front() == '/' && path.find("/..") != std::string::npos)
        real = RealPath(CollapsePath(path));
    if (!real)
        return 0;
    SetReference(*real, fsRef);
    return 1;
}

OSErr FSFindFolder(FSVolumeRefNum vRefNum, OSType folderType, Boolean createFolder, FSRef* foundRef)
{
    if (vRefNum != kUserDomain || folderType != kCachedDataFolderType)
        return fnfErr;
    std::string folder;
    {
        const std::lock_guard lock(cachesMutex);
        folder = cachesFolder;
    }
    if (folder.empty())
        return fnfErr;
    if (createFolder)
        (void)mkdir(folder.c_str(), 0700);  // whether it is there now is what counts
    const std::optional<std::string> real = RealPath(folder);
    struct stat status {};
    if (!real || stat(real->c_str(), &status) != 0 || !S_ISDIR(status.st_mode))
        return fnfErr;
    SetReference(*real, foundRef);
    return noErr;
}

OSStatus FSRefMakePath(const FSRef* ref, UInt8* path, UInt32 pathBufferSize)
{
    const std::optional<std::string> text = PathOf(*ref);
    struct stat status {};
    if (!text || lstat(text->c_str(), &status) != 0)
        return fnfErr;
    if (text->size() >= pathBufferSize)
        return pathTooLongErr;
    std::memcpy(path, text->c_str(), text->size() + 1);
    return noErr;
}

}  // extern "C"
