// client/watch/source_watch.cpp: events of folders into changes of sources.
#include "client/watch/source_watch.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>

#include "client/import/source_walk.h"

namespace pavex {

namespace {

namespace fs = std::filesystem;
using Event = FolderEvent::Kind;
using Change = SourceChange::Kind;

constexpr const char* kNoMoreWatches =
    "the system lets you watch no more folders (its setting fs.inotify.max_user_watches)";
constexpr const char* kRemote = "its file system does not tell of all changes";

bool IsFolder(const std::string& path)
{
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// The path, where each symbolic link on the way stands, and where it all leads to, there or not: the source changes
// when one of them comes or goes.
std::set<std::string> PlacesOnTheWay(const std::string& path)
{
    constexpr size_t kMostLinks = 40;  // as the system follows them
    std::set<std::string> places = {path};
    std::error_code failure;
    fs::path reached = "/";
    std::vector<fs::path> ahead;  // names, the next one last
    const auto lead = [&ahead](const fs::path& names) {
        std::copy(std::make_reverse_iterator(names.end()), std::make_reverse_iterator(names.begin()),
                  std::back_inserter(ahead));
    };
    lead(fs::path(path).relative_path());
    size_t links = 0;
    while (!ahead.empty()) {
        const fs::path name = ahead.back();
        ahead.pop_back();
        const fs::path next = name == ".."                  ? reached.parent_path()
                              : name.empty() || name == "." ? reached
                                                            : reached / name;
        const bool isLink = fs::is_symlink(fs::symlink_status(next, failure)) && ++links <= kMostLinks;
        if (!isLink) {
            reached = next;
            continue;
        }
        places.insert(next.string());
        const fs::path target = fs::read_symlink(next, failure);
        if (target.is_absolute())
            reached = "/";
        lead(target.relative_path());
    }
    places.insert(reached.string());
    return places;
}

}  // namespace

// One placing: what the source needs watched now.
class SourceWatch::Placing {
public:
    Placing(FolderEvents* events, int source) : events_(events), source_(source) {}

    // The folders above a path, each for the name that leads on.
    void Above(const std::string& path)
    {
        fs::path below = path;
        while (below.has_relative_path()) {
            const fs::path folder = below.parent_path();
            Watch(folder.string(), Role::Kind::kAbove, below.filename().string());
            below = folder;
        }
    }

    void Itself(const std::string& path, const std::function<bool()>& goOn)
    {
        if (!IsFolder(path)) {
            Watch(path, Role::Kind::kFile, {});
            return;
        }
        WalkHandler handler;
        handler.unreadable = [](const std::string&, const std::string&) {};  // the importer reports it
        handler.folder = [&](const std::string& folder, bool entered) {
            Watch(folder, entered ? Role::Kind::kFolder : Role::Kind::kHidden, {});
            return !full_ && goOn();
        };
        (void)WalkSource(path, handler);
    }

    bool IsFull() const { return full_; }
    std::vector<std::pair<int, Role>> TakeRoles() { return std::move(roles_); }

private:
    void Watch(const std::string& path, Role::Kind kind, const std::string& name)
    {
        const bool deep = kind == Role::Kind::kFolder || kind == Role::Kind::kFile;
        const int watch = events_->Watch(path, deep ? FolderEvents::Depth::kContents : FolderEvents::Depth::kNames);
        // Of what may not be read nothing is told; its parent tells when it may.
        if (watch >= 0)
            roles_.emplace_back(watch, Role{source_, kind, path, name});
        else
            full_ = full_ || errno == ENOSPC;
    }

    FolderEvents* events_;
    int source_;
    bool full_ = false;
    std::vector<std::pair<int, Role>> roles_;
};

// One reading of events.
struct SourceWatch::Batch {
    const std::function<void(const SourceChange& change)>& take;
    // Messages that were moved away; by the move, until the event comes that tells where to.
    std::map<std::pair<int, uint32_t>, std::string> moved;

    void Tell(Change kind, int source, const std::string& path = {}) const { take({kind, source, path}); }
};

SourceWatch::SourceWatch(FolderEvents* events, std::string whyNoEvents)
    : events_(events), whyNoEvents_(std::move(whyNoEvents))
{
}

SourceWatch::Placed SourceWatch::Place(int source, const std::string& path, const std::function<bool()>& goOn)
{
    Placed placed;
    std::error_code failure;
    const fs::path canonical = fs::canonical(path, failure);
    placed.canonicalPath = failure ? std::string() : canonical.string();
    if (events_ == nullptr) {
        placed.whyUnseen = whyNoEvents_;
        return placed;
    }
    Placing placing(events_, source);
    for (const std::string& place : PlacesOnTheWay(path))
        placing.Above(place);
    if (!placed.canonicalPath.empty())
        placing.Itself(placed.canonicalPath, goOn);
    Watched watched{placed.canonicalPath, {}};
    std::vector<std::pair<int, Role>> roles = placing.TakeRoles();
    for (const auto& [watch, role] : roles) {
        if (role.kind == Role::Kind::kFolder || role.kind == Role::Kind::kFile)
            watched.places.emplace(watch, role.path);
    }
    Watched& before = sources_[source];
    placed.changed = before.places != watched.places || before.canonicalPath != watched.canonicalPath;
    before = std::move(watched);
    // Added before the old ones are dropped: what is watched on keeps its watch.
    std::map<int, std::vector<Role>> added;
    for (auto& [watch, role] : roles)
        added[watch].push_back(std::move(role));
    for (auto& [watch, old] : roles_)
        std::erase_if(old, [source](const Role& role) { return role.source == source; });
    for (auto& [watch, fresh] : added)
        std::move(fresh.begin(), fresh.end(), std::back_inserter(roles_[watch]));
    DropUnneeded();
    if (placing.IsFull())
        placed.whyUnseen = kNoMoreWatches;
    else if (!placed.canonicalPath.empty() && !TellsOfAllChanges(placed.canonicalPath))
        placed.whyUnseen = kRemote;
    return placed;
}

// Ends the watches that nothing needs.
void SourceWatch::DropUnneeded()
{
    for (auto entry = roles_.begin(); entry != roles_.end();) {
        if (!entry->second.empty()) {
            ++entry;
            continue;
        }
        events_->Unwatch(entry->first);
        entry = roles_.erase(entry);
    }
}

void SourceWatch::Remove(int source)
{
    sources_.erase(source);
    for (auto& [watch, roles] : roles_)
        std::erase_if(roles, [source](const Role& role) { return role.source == source; });
    if (events_ != nullptr)
        DropUnneeded();
}

void SourceWatch::Read(const std::function<void(const SourceChange& change)>& take)
{
    if (events_ == nullptr)
        return;
    Batch batch{take, {}};
    events_->Read([&](const FolderEvent& event) { TakeEvent(event, &batch); });
    for (const auto& [move, path] : batch.moved)
        batch.Tell(Change::kGone, move.first, path);
}

void SourceWatch::TakeEvent(const FolderEvent& event, Batch* batch)
{
    if (event.kind == Event::kLost) {
        for (const auto& [source, watched] : sources_)
            batch->Tell(Change::kAnything, source);
        return;
    }
    const auto found = roles_.find(event.watch);
    if (found == roles_.end())
        return;
    for (const Role& role : found->second)
        TakeForRole(role, event, batch);
    if (event.kind == Event::kEnded)
        roles_.erase(found);
}

void SourceWatch::TakeForRole(const Role& role, const FolderEvent& event, Batch* batch)
{
    if (event.name.empty() && (event.kind == Event::kGone || event.kind == Event::kEnded)) {
        batch->Tell(Change::kFolders, role.source);
        return;
    }
    switch (role.kind) {
    case Role::Kind::kAbove:
        // The watch may be deeper than this role needs.
        if (event.name == role.name && event.kind != Event::kChanged)
            batch->Tell(Change::kFolders, role.source);
        return;
    case Role::Kind::kHidden:
        if (event.isFolder && event.kind == Event::kAdded && (event.name == "cur" || event.name == "new"))
            batch->Tell(Change::kFolders, role.source);
        return;
    case Role::Kind::kFile:
        if (event.name.empty())
            batch->Tell(event.kind == Event::kAttributes ? Change::kAttributes : Change::kFile, role.source, role.path);
        return;
    case Role::Kind::kFolder:
        TakeInFolder(role, event, batch);
        return;
    }
}

void SourceWatch::TakeInFolder(const Role& role, const FolderEvent& event, Batch* batch)
{
    const std::string path = role.path + "/" + event.name;
    if (event.name.empty() || event.isFolder || (event.kind == Event::kAdded && IsFolder(path))) {
        batch->Tell(Change::kFolders, role.source);
        return;
    }
    if (!IsSourceName(event.name))
        return;
    const std::pair<int, uint32_t> move{role.source, event.move};
    const bool movedMessage = event.move != 0 && IsMaildirMessage(role.source, path);
    switch (event.kind) {
    case Event::kGone:
        if (movedMessage)
            batch->moved[move] = path;
        else
            batch->Tell(Change::kGone, role.source, path);
        return;
    case Event::kAdded:
        // A message that only got another name or folder is not gone.  Other files are known by their names.
        if (movedMessage)
            batch->moved.erase(move);
        batch->Tell(Change::kFile, role.source, path);
        return;
    case Event::kChanged:
        batch->Tell(Change::kFile, role.source, path);
        return;
    case Event::kAttributes:
        batch->Tell(Change::kAttributes, role.source, path);
        return;
    case Event::kEnded:
    case Event::kLost:
        return;
    }
}

bool SourceWatch::IsMaildirMessage(int source, const std::string& path) const
{
    const auto found = sources_.find(source);
    return found != sources_.end() && IsMaildirFile(found->second.canonicalPath, path);
}

}  // namespace pavex
