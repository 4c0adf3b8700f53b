// client/import/source_walk.cpp: folders, entered one after the other from a list, never by recursion.
#include "client/import/source_walk.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include "client/import/owners.h"
#include "client/store/descriptor.h"

namespace pavex {
namespace {

// Control files of mail servers and programs, by the whole name, its beginning or its end.
constexpr std::string_view kControlNames[] = {"maildirfolder", "maildirsize", "subscriptions"};
constexpr std::string_view kControlPrefixes[] = {"dovecot.index", "dovecot.list.index", "dovecot.mailbox.log",
                                                 "dovecot-uid",   "dovecot-keywords",   "dovecot-acl",
                                                 "courierimap",   "courierpop3",        "cyrus."};
constexpr std::string_view kControlSuffixes[] = {".msf",       ".cmeta", ".ibex.index", ".ibex.index.data",
                                                 ".index.ids", ".lock"};

struct FolderCloser {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

enum class FolderKind { kPlain, kMaildirCur, kMaildirNew };

struct PendingFolder {
    std::string path;
    FolderKind kind;
};

bool IsFolder(const std::string& path)
{
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool IsControlFile(std::string_view name)
{
    return std::find(std::begin(kControlNames), std::end(kControlNames), name) != std::end(kControlNames) ||
           std::any_of(std::begin(kControlPrefixes), std::end(kControlPrefixes),
                       [&](std::string_view prefix) { return name.starts_with(prefix); }) ||
           std::any_of(std::begin(kControlSuffixes), std::end(kControlSuffixes),
                       [&](std::string_view suffix) { return name.ends_with(suffix); });
}

// Of a folder that was named itself, not met inside its Maildir.
FolderKind KindByPlace(const std::string& path)
{
    const size_t slash = path.rfind('/');
    const std::string parent = path.substr(0, slash);
    const std::string name = slash == path.npos ? std::string() : path.substr(slash + 1);
    if ((name != "cur" && name != "new") || !IsFolder(parent + "/cur") || !IsFolder(parent + "/new"))
        return FolderKind::kPlain;
    return name == "cur" ? FolderKind::kMaildirCur : FolderKind::kMaildirNew;
}

FolderKind KindInFolder(FolderKind parent, std::string_view name)
{
    if (parent != FolderKind::kPlain)
        return FolderKind::kPlain;
    if (name == "cur")
        return FolderKind::kMaildirCur;
    return name == "new" ? FolderKind::kMaildirNew : FolderKind::kPlain;
}

// Of a folder that the walk of the source enters.
FolderKind KindInSource(const std::string& source, const std::string& path)
{
    FolderKind kind = KindByPlace(source);
    for (size_t at = source.size(); at < path.size();) {
        const size_t end = std::min(path.find('/', at + 1), path.size());
        kind = KindInFolder(kind, std::string_view(path).substr(at + 1, end - at - 1));
        at = end;
    }
    return kind;
}

class Walk {
public:
    explicit Walk(const WalkHandler& handler) : handler_(handler) {}

    bool Run(const std::string& path)
    {
        if (!IsFolder(path)) {
            const FolderKind kind = KindByPlace(path.substr(0, path.rfind('/')));
            const bool inMaildir = kind != FolderKind::kPlain;
            return VisitFile(path, inMaildir ? SourceFile::Place::kMaildir : SourceFile::Place::kNamed, kind);
        }
        pending_.push_back({path, KindByPlace(path)});
        while (!pending_.empty()) {
            const PendingFolder folder = std::move(pending_.back());
            pending_.pop_back();
            if (!VisitFolder(folder))
                return false;
        }
        return true;
    }

    bool VisitIn(FolderKind folder, const std::string& path)
    {
        return VisitNamed(path, std::string_view(path).substr(path.rfind('/') + 1), folder);
    }

private:
    struct Name {
        std::string text;
        bool isFile;  // known to be no folder; else it must be asked for
    };

    bool VisitFolder(const PendingFolder& folder)
    {
        struct stat info {};
        if (::stat(folder.path.c_str(), &info) != 0 || !entered_.emplace(info.st_dev, info.st_ino).second)
            return true;
        if (handler_.folder && !handler_.folder(folder.path, true))
            return false;
        std::vector<Name> names;
        if (!ListNames(folder.path, &names))
            return true;
        const bool maildir =
            folder.kind == FolderKind::kPlain && (IsFolder(folder.path + "/cur") || IsFolder(folder.path + "/new"));
        std::vector<PendingFolder> folders;
        for (const Name& name : names) {
            const std::string path = folder.path + "/" + name.text;
            const bool isFolder = !name.isFile && IsFolder(path);
            if (isFolder ? !NoteFolder(path, name.text, maildir, &folders) : !VisitNamed(path, name.text, folder.kind))
                return false;
        }
        pending_.insert(pending_.end(), folders.rbegin(), folders.rend());  // the last is entered next
        return true;
    }

    bool NoteFolder(const std::string& path, const std::string& name, bool maildir, std::vector<PendingFolder>* folders)
    {
        // Folders that begin with a dot are those of a Maildir, or none of the user's.
        if (maildir && name == "tmp")
            return true;
        if (name.starts_with('.') && !IsFolder(path + "/cur") && !IsFolder(path + "/new"))
            return !handler_.folder || handler_.folder(path, false);
        folders->push_back({path, maildir ? KindInFolder(FolderKind::kPlain, name) : FolderKind::kPlain});
        return true;
    }

    bool VisitNamed(const std::string& path, std::string_view name, FolderKind kind)
    {
        if (!handler_.file || !IsSourceName(name))
            return true;
        const bool inMaildir = kind != FolderKind::kPlain;
        return VisitFile(path, inMaildir ? SourceFile::Place::kMaildir : SourceFile::Place::kFolder, kind);
    }

    bool VisitFile(const std::string& path, SourceFile::Place place, FolderKind kind)
    {
        SourceFile file;
        file.path = path;
        file.place = place;
        // Not blocking: a pipe among the files must not hold the import up.
        const Descriptor descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
        struct stat info {};
        if (!descriptor.IsOpen() || ::fstat(descriptor.Get(), &info) != 0) {
            handler_.unreadable(path, std::string("cannot be opened: ") + std::strerror(errno));
            return true;
        }
        if (!S_ISREG(info.st_mode)) {
            handler_.unreadable(path, "is neither a file nor a folder");
            return true;
        }
        file.size = static_cast<uint64_t>(info.st_size);
        file.modified = info.st_mtime;
        if (file.size == 0 && place == SourceFile::Place::kFolder && MayBeEmpty(path))
            return true;
        if (!ReadHead(descriptor.Get(), &file)) {
            handler_.unreadable(path, std::string("cannot be read: ") + std::strerror(errno));
            return true;
        }
        if (place == SourceFile::Place::kMaildir) {
            const MaildirFlags flags = ReadMaildirFlags(path.substr(path.rfind('/') + 1));
            file.unread = kind == FolderKind::kMaildirNew || !flags.seen;
            file.draft = flags.draft;
            file.deleted = flags.trashed;
        }
        return handler_.file(file);
    }

    static bool ReadHead(int descriptor, SourceFile* file)
    {
        file->head.resize(kHeadBytes);
        const ssize_t count = ::pread(descriptor, file->head.data(), file->head.size(), 0);
        file->head.resize(count > 0 ? static_cast<size_t>(count) : 0);
        return count >= 0;
    }

    bool ListNames(const std::string& path, std::vector<Name>* names)
    {
        const std::unique_ptr<DIR, FolderCloser> folder(::opendir(path.c_str()));
        if (!folder) {
            handler_.unreadable(path, std::string("cannot be opened: ") + std::strerror(errno));
            return false;
        }
        errno = 0;
        while (const dirent* entry = ::readdir(folder.get())) {
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..")
                names->push_back({std::string(name), entry->d_type == DT_REG});
        }
        if (errno != 0)
            handler_.unreadable(path, std::string("cannot be read to its end: ") + std::strerror(errno));
        std::sort(names->begin(), names->end(), [](const Name& a, const Name& b) { return a.text < b.text; });
        return true;
    }

    const WalkHandler& handler_;
    std::vector<PendingFolder> pending_;
    std::set<std::pair<dev_t, ino_t>> entered_;
};

}  // namespace

MaildirFlags ReadMaildirFlags(std::string_view fileName)
{
    MaildirFlags flags;
    const size_t info = fileName.rfind("2,");
    if (info == fileName.npos || info == 0 || std::string_view(":;!").find(fileName[info - 1]) == fileName.npos)
        return flags;
    const std::string_view letters = fileName.substr(info + 2);
    flags.seen = letters.find('S') != letters.npos;
    flags.draft = letters.find('D') != letters.npos;
    flags.trashed = letters.find('T') != letters.npos;
    return flags;
}

bool WalkSource(const std::string& path, const WalkHandler& handler)
{
    return Walk(handler).Run(path);
}

bool WalkFiles(const std::string& source, const std::vector<std::string>& files, const WalkHandler& handler)
{
    Walk walk(handler);
    for (const std::string& path : files) {
        struct stat info {};
        if (!path.starts_with(source + "/") || ::stat(path.c_str(), &info) != 0 || S_ISDIR(info.st_mode))
            continue;
        if (!walk.VisitIn(KindInSource(source, path.substr(0, path.rfind('/'))), path))
            return false;
    }
    return true;
}

bool IsSourceName(std::string_view name)
{
    return !name.starts_with('.') && !IsControlFile(name);
}

bool IsMaildirFile(const std::string& source, const std::string& path)
{
    return path.starts_with(source + "/") &&
           KindInSource(source, path.substr(0, path.rfind('/'))) != FolderKind::kPlain;
}

}  // namespace pavex
