// client/watch/folder_events.h: what the system tells of changed folders: the one door to it.
// On Linux this is inotify; where there is nothing of the kind, OpenFolderEvents says so.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace pavex {

struct FolderEvent {
    enum class Kind {
        kAdded,       // made, or moved there
        kGone,        // deleted, or moved away
        kChanged,     // written to
        kAttributes,  // its rights or times were changed
        kEnded,       // the watch is no more: what it watched is gone
        kLost,        // there were more events than the system keeps: anything may have changed
    };
    Kind kind = Kind::kLost;
    int watch = -1;
    std::string name;       // in the watched folder; empty: the watched folder or file itself
    bool isFolder = false;  // what the name means; a symbolic link never is
    uint32_t move = 0;      // the same in the two events of a move; 0: none
};

class FolderEvents {
public:
    enum class Depth {
        kNames,     // of a folder: what comes into it and goes; of anything: that it goes itself
        kContents,  // that, and what is written to the file or to the files in the folder
    };
    virtual ~FolderEvents() = default;
    // Watches a folder or file, wherever symbolic links lead.  The same folder always has the same number, and is
    // watched with the greatest depth asked for.  -1, with errno, when it cannot be watched; ENOSPC: the user may
    // watch no more.
    virtual int Watch(const std::string& path, Depth depth) = 0;
    virtual void Unwatch(int watch) = 0;
    // Readable when there are events.
    virtual int Descriptor() const = 0;
    // Hands out the events that are there; does not wait.
    virtual void Read(const std::function<void(const FolderEvent& event)>& take) = 0;
};

// Null, with *error saying why, when the system tells nothing.
std::unique_ptr<FolderEvents> OpenFolderEvents(std::string* error);
// False where changes can be made that the system is not told of: on file systems of other machines.
bool TellsOfAllChanges(const std::string& path);

}  // namespace pavex
