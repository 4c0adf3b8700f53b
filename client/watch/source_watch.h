// client/watch/source_watch.h: events of folders into changes of sources.
// A source may be a file, a folder or a Maildir, may not be there yet, may go and come back.  What the importer
// would not read causes no change.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "client/watch/folder_events.h"

namespace pavex {

struct SourceChange {
    enum class Kind {
        kFile,        // a file is new or was written to
        kAttributes,  // a file's rights or times were changed
        kGone,        // a file went
        kFolders,     // folders may have come or gone, or the source itself: place it again
        kAnything,    // events were lost
    };
    Kind kind = Kind::kAnything;
    int source = 0;
    std::string path;  // of the file, as the importer's walk of the source gives it
};

class SourceWatch {
public:
    // events  null: the system tells nothing, and Place says so.
    explicit SourceWatch(FolderEvents* events, std::string whyNoEvents = {});

    struct Placed {
        bool changed = false;       // other folders than the last time, or other ones of the same names
        std::string canonicalPath;  // where the source is; empty: it is not there
        std::string whyUnseen;      // why changes of it may not be seen; empty when they are
    };
    // Watches the source's folders as they are now: what changes from now on is told.
    //   goOn  asked at each folder; false ends it at once.
    Placed Place(int source, const std::string& path, const std::function<bool()>& goOn);
    void Remove(int source);

    // Hands out the changes that are there; does not wait.
    void Read(const std::function<void(const SourceChange& change)>& take);

private:
    // Why a folder or file is watched.
    struct Role {
        enum class Kind {
            kAbove,   // a folder above the source: only one name in it matters
            kFolder,  // a folder of the source
            kHidden,  // a folder in the source that would be one of it if it were a Maildir
            kFile,    // the source itself, a file
        };
        int source = 0;
        Kind kind = Kind::kFolder;
        std::string path;  // of what is watched
        std::string name;  // kAbove: the one that matters
    };
    struct Watched {
        std::string canonicalPath;
        std::set<std::pair<int, std::string>> places;  // by their watch and path
    };
    class Placing;
    struct Batch;

    void DropUnneeded();
    void TakeEvent(const FolderEvent& event, Batch* batch);
    void TakeForRole(const Role& role, const FolderEvent& event, Batch* batch);
    void TakeInFolder(const Role& role, const FolderEvent& event, Batch* batch);
    bool IsMaildirMessage(int source, const std::string& path) const;

    FolderEvents* events_;
    std::string whyNoEvents_;
    std::map<int, std::vector<Role>> roles_;  // by watch
    std::map<int, Watched> sources_;
};

}  // namespace pavex
