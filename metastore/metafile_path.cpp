// metastore/metafile_path.cpp: where a note's metafile lies, and what it is called.
#include "metastore/metafile_path.h"

#include <iterator>

#include "metastore/search_engine.h"
#include "platform/posix.h"

namespace {

constexpr size_t kMaxPathBytes = 1024;
constexpr size_t kCachesPathBytes = 256;  // of the folder found, terminator included
constexpr size_t kRootPathBytes = 255;    // the folder's name is cut there, whatever it costs
constexpr const char* kOlderLayout = "/Metadata/Quorvex/Morvane Pavex/Spotlight";
constexpr const char* kLayout = "/Metadata/Quorvex/Pavex/Spotlight";

// Empty when the user has none.
std::string CachesFolder()
{
    FSRef folder;
    UInt8 path[kCachesPathBytes + 1] = {};
    if (FSFindFolder(kUserDomain, kCachedDataFolderType, kDontCreateFolder, &folder) != 0 ||
        FSRefMakePath(&folder, path, kCachesPathBytes) != 0)
        return {};
    return reinterpret_cast<const char*>(path);
}

std::string Below(const std::string& caches, const char* layout)
{
    const size_t room = caches.size() < kRootPathBytes ? kRootPathBytes - caches.size() : 0;
    return caches + std::string(layout).substr(0, room);
}

bool IsFolder(const std::string& path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void ReplaceAll(CFMutableStringRef text, CFStringRef find, CFStringRef replacement)
{
    CFStringFindAndReplace(text, find, replacement, CFRangeMake(0, CFStringGetLength(text)), 0);
}

}  // namespace

CFURLRef SearchEngine::CopyUserMetaDataFolder()
{
    const std::string caches = CachesFolder();
    if (caches.empty())
        return nullptr;
    const std::string older = Below(caches, kOlderLayout);
    const std::string root = IsFolder(older) ? older : Below(caches, kLayout);
    return CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(root.data()),
                                                   static_cast<CFIndex>(root.size()), true);
}

const char* MetafileExtension(SearchEngineEventType type)
{
    return type < std::size(kMetafileExtensions) ? kMetafileExtensions[type] : kMetafileExtensions[kSearchEventNote];
}

CFStringRef CopyMetafileComponent(CFStringRef noteUrl)
{
    const CFMutableStringRef component = CFStringCreateMutableCopy(kCFAllocatorDefault, 0, noteUrl);
    ReplaceAll(component, CFSTR("Pavex:///"), CFSTR(""));
    ReplaceAll(component, CFSTR("//"), CFSTR("/"));
    return component;
}

std::string FileSystemPath(CFURLRef url)
{
    // one byte more than is asked for: a path that just fits comes without a terminator
    UInt8 path[kMaxPathBytes + 1] = {};
    if (url == nullptr || !CFURLGetFileSystemRepresentation(url, true, path, kMaxPathBytes))
        return {};
    return reinterpret_cast<const char*>(path);
}

std::string TemporaryMetafile(const std::string& note)
{
    const size_t name = note.rfind('/') + 1;  // 0 without a folder
    return note.substr(0, name) + "." + note.substr(name) + ".part";
}

std::string TouchCommand(const std::string& path)
{
    std::string command = "touch \"";
    for (const char c : path) {
        if (c == '"' || c == '$' || c == '`' || c == '\\')
            command += '\\';  // these four mean something to the shell inside the quotes
        command += c;
    }
    return command + "\"";
}
