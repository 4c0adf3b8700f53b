// client/watch/folder_events.cpp: what the system tells of changed folders: inotify.
#include "client/watch/folder_events.h"

#ifdef __linux__

#include <sys/inotify.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <optional>

#include "client/store/descriptor.h"

namespace pavex {

namespace {

constexpr uint32_t kNamesMask = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF;
// Reading is none of these: whoever only reads what is watched, as an import does, causes no events.
constexpr uint32_t kContentsMask = kNamesMask | IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB;

struct KindRow {
    uint32_t mask;
    FolderEvent::Kind kind;
};
constexpr KindRow kKinds[] = {
    {IN_Q_OVERFLOW, FolderEvent::Kind::kLost},
    {IN_IGNORED, FolderEvent::Kind::kEnded},
    {IN_CREATE | IN_MOVED_TO, FolderEvent::Kind::kAdded},
    {IN_DELETE | IN_MOVED_FROM | IN_DELETE_SELF | IN_MOVE_SELF, FolderEvent::Kind::kGone},
    {IN_MODIFY | IN_CLOSE_WRITE, FolderEvent::Kind::kChanged},
    {IN_ATTRIB, FolderEvent::Kind::kAttributes},
};

std::optional<FolderEvent> EventOf(const inotify_event& raw, const char* name)
{
    const auto* row = std::find_if(std::begin(kKinds), std::end(kKinds),
                                   [&](const KindRow& each) { return (each.mask & raw.mask) != 0; });
    if (row == std::end(kKinds))
        return std::nullopt;  // an unmounting, which ends the watch with an event of its own
    FolderEvent event;
    event.kind = row->kind;
    event.watch = raw.wd;
    event.name.assign(name, strnlen(name, raw.len));
    event.isFolder = (raw.mask & IN_ISDIR) != 0;
    event.move = raw.cookie;
    return event;
}

class Inotify : public FolderEvents {
public:
    explicit Inotify(pavex::Descriptor descriptor) : descriptor_(std::move(descriptor)) {}

    int Watch(const std::string& path, Depth depth) override
    {
        const uint32_t mask = depth == Depth::kNames ? kNamesMask : kContentsMask;
        return inotify_add_watch(descriptor_.Get(), path.c_str(), mask | IN_MASK_ADD);
    }

    void Unwatch(int watch) override { (void)inotify_rm_watch(descriptor_.Get(), watch); }

    int Descriptor() const override { return descriptor_.Get(); }

    void Read(const std::function<void(const FolderEvent& event)>& take) override
    {
        alignas(inotify_event) std::array<char, 65536> buffer;
        for (;;) {
            const ssize_t count = read(descriptor_.Get(), buffer.data(), buffer.size());
            if (count <= 0)
                return;
            for (const char* at = buffer.data(); at < buffer.data() + count;) {
                inotify_event raw{};
                std::memcpy(&raw, at, sizeof raw);
                if (const std::optional<FolderEvent> event = EventOf(raw, at + sizeof raw))
                    take(*event);
                at += sizeof raw + raw.len;
            }
        }
    }

private:
    pavex::Descriptor descriptor_;
};

// Of file systems whose files others change behind the system's back.
constexpr uint32_t kRemoteFileSystems[] = {
    0x6969,      // NFS
    0x517B,      // SMB
    0xFF534D42,  // CIFS
    0xFE534D42,  // SMB 2
    0x65735546,  // FUSE: many of them
    0x01021997,  // 9P
    0x5346414F,  // AFS
    0x00C36400,  // Ceph
};

}  // namespace

std::unique_ptr<FolderEvents> OpenFolderEvents(std::string* error)
{
    pavex::Descriptor descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (!descriptor.IsOpen()) {
        *error = std::strerror(errno);
        return nullptr;
    }
    return std::make_unique<Inotify>(std::move(descriptor));
}

bool TellsOfAllChanges(const std::string& path)
{
    struct statfs info {};
    if (statfs(path.c_str(), &info) != 0)
        return true;
    return std::find(std::begin(kRemoteFileSystems), std::end(kRemoteFileSystems),
                     static_cast<uint32_t>(info.f_type)) == std::end(kRemoteFileSystems);
}

}  // namespace pavex

#else

namespace pavex {

std::unique_ptr<FolderEvents> OpenFolderEvents(std::string* error)
{
    *error = "this system has nothing of the kind";
    return nullptr;
}

bool TellsOfAllChanges(const std::string&)
{
    return false;
}

}  // namespace pavex

#endif
