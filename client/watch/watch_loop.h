// client/watch/watch_loop.h: what the watching thread does, again and again.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "client/watch/change_queue.h"
#include "client/watch/complaints.h"
#include "client/watch/read_records.h"
#include "client/watch/source_watch.h"
#include "client/watch/stop_request.h"
#include "client/watch/watch_list.h"
#include "client/watch/watcher.h"

namespace pavex {

// Used on one thread.
class WatchLoop {
public:
    // stop  borrowed; made by another thread.
    WatchLoop(const Watcher::Settings& settings, const StopRequest& stop);
    // Returns when the stop was requested.
    void Run();

private:
    struct Source {
        WatchedSource listed;
        std::string canonicalPath;  // when it was last placed; empty: it was not there
        std::string whyUnseen;      // why changes may not be seen, as the log says; empty: they are
        uint64_t treeState = 0;     // of a source whose changes may not be seen, before it was last read
        Complaints complaints;
    };
    struct Reading {
        ImportOptions options;
        ImportReport report;
        std::string error;
        std::string began;  // as in ReadRecord
        bool All() const { return options.only.empty(); }
    };

    bool GoOn();
    void Wait() const;
    void TakeEvents();
    void TakeChange(const SourceChange& change);
    bool MustReadAllFor(const Source& source, const std::string& path) const;

    void FollowList();
    void LogNewProblems(const std::vector<std::string>& problems);
    bool IsKnown(const WatchedSource& listed) const;
    void Forget(int id);

    void Work(const DueWork& work);
    bool Place(int id, Source* source);
    bool HasChangedUnseen(Source* source);
    void Read(int id, Source* source, const DueWork& work);
    void Import(const Source& source, Reading* reading);
    void Report(Source* source, const Reading& reading);
    void Plan(int id, const Source& source, const Reading& reading);

    const Watcher::Settings settings_;
    const StopRequest& stop_;
    std::string whyNoEvents_;
    std::unique_ptr<FolderEvents> events_;
    SourceWatch watch_;
    ChangeQueue queue_;
    std::map<int, Source> sources_;
    int lastId_;                         // of a source
    std::vector<std::string> problems_;  // of the list, as the log says
    ReadRecords records_;
    uint64_t eventsTaken_ = 0;  // when there last were any
};

}  // namespace pavex
