// client/watch/watcher.h: reads the watched sources in again when they change, on a thread of its own.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "client/import/importer.h"
#include "client/watch/change_queue.h"

namespace pavex {

class WatchLoop;

// Reads every source of the list once, since it may have changed while nobody watched, and then what changes.  The
// list is followed too.  What happens goes to the log, and for each source to watched.json in the data directory.
// All imports are made on the one thread: as long as it lives, nobody else in the process may import.
class Watcher {
public:
    using ImportCall =
        std::function<bool(const std::vector<std::string>& sources, const ImportOptions& options,
                           const ImportProgressCallback& progress, ImportReport* report, std::string* error)>;
    struct Settings {
        WatchWaits waits;
        ImportCall import = Import;
    };
    // Starts the thread.  Null, with *error saying why, when it cannot be had.
    static std::unique_ptr<Watcher> Start(const Settings& settings, std::string* error);
    // Asks the thread to end, and returns at once; an import that is going on ends in order.
    void RequestStop();
    // Asks, and waits for it.
    ~Watcher();
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

private:
    struct Parts;
    explicit Watcher(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> parts_;
};

}  // namespace pavex
