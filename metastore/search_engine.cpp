// metastore/search_engine.cpp: writes and removes metafiles.
// A metafile is written beside its place under one name a note, ".UNID.part", and renamed into it: a
// reader never sees half of one, and what a killed run leaves is overwritten by the note's next write.
#include "metastore/search_engine.h"

#include <cerrno>
#include <string>
#include <string_view>

#include "metastore/metafile_path.h"
#include "platform/owner.h"
#include "platform/posix.h"
#include "platform/store.h"
#include "strings/string_ids.h"

namespace {

using UrlOwner = CFOwner<CFURLRef>;

// Writes the event's property list into a file.  False when it is not there whole.
bool WritePropertyList(const SearchEngineEvent& event, const std::string& path)
{
    const CFOwner<CFDataRef> data(CFPropertyListCreateXMLData(kCFAllocatorDefault, event.Properties()));
    const UrlOwner file(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path.data()), static_cast<CFIndex>(path.size()), false));
    SInt32 error = 0;
    return data.Get() != nullptr && file.Get() != nullptr &&
           CFURLWriteDataAndPropertiesToResource(file.Get(), data.Get(), nullptr, &error);
}

// Puts the event's metafile into `path`; the old one stays, and nothing else, when that fails.
bool ReplaceMetafile(const SearchEngineEvent& event, const std::string& path, const std::string& temporary)
{
    if (WritePropertyList(event, temporary) && std::rename(temporary.c_str(), path.c_str()) == 0)
        return true;
    static_cast<void>(std::remove(temporary.c_str()));  // it may not have come into being
    return false;
}

// A note whose form changed has a metafile of another kind, which would be found beside the new one.
void RemoveOtherKinds(const std::string& note, std::string_view keptExtension)
{
    for (const char* extension : kMetafileExtensions) {
        if (extension != keptExtension)
            static_cast<void>(std::remove((note + "." + extension).c_str()));  // normal: there is none
    }
}

// What the search system's file events follow.  Its outcome changes nothing: the file is there.
void Touch(const std::string& path)
{
    [[maybe_unused]] const int outcome = std::system(TouchCommand(path).c_str());
}

}  // namespace

SearchEngine* SearchEngine::GetInstance()
{
    static SearchEngine instance;
    return &instance;
}

SearchEngine::SearchEngine() : root_(CopyUserMetaDataFolder())
{
    if (root_ == nullptr)
        LogEvent(kLogNoCachesFolder, 0, 0);
}

SearchEngine::~SearchEngine()
{
    if (root_ != nullptr)
        CFRelease(root_);
}

SearchEngineEvent SearchEngine::CreateEvent(SearchEngineEventType type, SearchEngineResult& result)
{
    result = kSearchEngineNoError;
    return SearchEngineEvent(type);
}

CFURLRef SearchEngine::GetMetaFilePath(const SearchEngineEvent& event) const
{
    const CFOwner<CFStringRef> key(CString(kNoteUrlKey).toCFStringRef());
    const void* const url = CFDictionaryGetValue(event.Properties(), key.Get());
    if (url == nullptr)
        return nullptr;
    const UrlOwner note(GetNoneExtMetaFilePathForNoteEntry(static_cast<CFStringRef>(url)));
    if (note.Get() == nullptr)
        return nullptr;
    const CFOwner<CFStringRef> extension(CString(MetafileExtension(event.Type())).toCFStringRef());
    return CFURLCreateCopyAppendingPathExtension(kCFAllocatorDefault, note.Get(), extension.Get());
}

CFURLRef SearchEngine::GetNoneExtMetaFilePathForNoteEntry(CFStringRef url) const
{
    if (root_ == nullptr)
        return nullptr;
    const CFOwner<CFStringRef> component(CopyMetafileComponent(url));
    if (component.Get() == nullptr || CFStringGetLength(component.Get()) == 0)
        return nullptr;  // a note whose URL could not be formed has no place of its own
    return CFURLCreateCopyAppendingPathComponent(kCFAllocatorDefault, root_, component.Get(), false);
}

SearchEngineResult SearchEngine::SendEvent(const SearchEngineEvent& event, int /*flags*/)
{
    const UrlOwner url(GetMetaFilePath(event));
    if (url.Get() == nullptr)
        return kSearchEngineParamErr;
    const UrlOwner folder(CFURLCreateCopyDeletingLastPathComponent(kCFAllocatorDefault, url.Get()));
    static_cast<void>(EnsureValidPath(folder.Get()));  // the write will tell

    const std::string path = FileSystemPath(url.Get());
    if (path.empty())
        return kSearchEngineNoError;
    const std::string_view extension = MetafileExtension(event.Type());
    const std::string note = path.substr(0, path.size() - extension.size() - 1);
    if (ReplaceMetafile(event, path, TemporaryMetafile(note))) {
        RemoveOtherKinds(note, extension);
        Touch(path);
    }
    return kSearchEngineNoError;
}

SearchEngineResult SearchEngine::DeleteNoteEntry(const CString& url)
{
    const CFOwner<CFStringRef> text(url.toCFStringRef());
    const UrlOwner noteUrl(GetNoneExtMetaFilePathForNoteEntry(text.Get()));
    const std::string note = FileSystemPath(noteUrl.Get());
    if (note.empty())
        return kSearchEngineNoError;
    for (const char* extension : kMetafileExtensions) {
        if (std::remove((note + "." + extension).c_str()) == 0)
            break;  // a note has one metafile
    }
    static_cast<void>(std::remove(TemporaryMetafile(note).c_str()));  // what a killed run may have left
    return kSearchEngineNoError;
}

// Recursive; it ends at the first folder that exists, "/" at the latest.
bool EnsureValidPath(CFURLRef folder)
{
    if (folder == nullptr)
        return false;
    const UrlOwner parent(CFURLCreateCopyDeletingLastPathComponent(kCFAllocatorDefault, folder));
    FSRef existing;
    if (CFURLGetFSRef(folder, &existing))
        return true;
    if (!EnsureValidPath(parent.Get()))
        return false;
    const std::string path = FileSystemPath(folder);
    if (path.empty())
        return false;
    // another process may have been faster
    return mkdir(path.c_str(), S_IRWXU) == 0 || (errno == EEXIST && CFURLGetFSRef(folder, &existing));
}
