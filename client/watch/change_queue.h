// client/watch/change_queue.h: when a source that changed is read again.
// Not at once, since changes come in bursts: after a quiet time, or when it does not grow quiet, after the longest
// wait.  Times are milliseconds of any steady clock, which the caller hands in: nothing here waits.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace pavex {

struct WatchWaits {
    uint64_t quietMs = 2000;
    uint64_t longestMs = 30000;
    // A reading that took long is followed by a rest nine times as long, at most this: a tenth of the time goes
    // into reading what keeps changing.
    uint64_t longestRestMs = 600000;
    // After this a source is read again that could not be read, and looked at that tells nothing of its changes.
    uint64_t againMs = 600000;
};

// What has become due of a source.
struct DueWork {
    int source = 0;
    bool all = false;             // to be read as a whole
    bool folders = false;         // folders may have come or gone: where there are any others, all is to be read
    bool look = false;            // it may have changed unseen
    std::set<std::string> files;  // that changed; empty with `all`
};

class ChangeQueue {
public:
    explicit ChangeQueue(const WatchWaits& waits) : waits_(waits) {}

    void FileChanged(int source, const std::string& path, uint64_t now);
    void FoldersChanged(int source, uint64_t now);
    void AllChanged(int source, uint64_t now);
    // Due at that time or after the rest, changed or not.
    void AllDueAt(int source, uint64_t time);
    void LookAt(int source, uint64_t time);
    void Forget(int source);

    // When Take has something; nothing when no source is waiting.  The past: now.
    std::optional<uint64_t> NextDue() const;
    // What has been due for longest.
    std::optional<DueWork> Take(uint64_t now);
    // A reading has ended: of the whole source, or of some of its files.
    void Read(int source, bool all, uint64_t began, uint64_t ended);

private:
    // A burst of changes.
    struct Burst {
        uint64_t first = 0;
        uint64_t last = 0;
    };
    struct Waiting {
        std::set<std::string> files;
        bool all = false;
        bool folders = false;
        std::optional<Burst> burst;     // of the three above
        std::optional<uint64_t> allAt;  // whole, whether it changed or not
        std::optional<uint64_t> lookAt;
        uint64_t restForAll = 0;    // until then it is not read as a whole
        uint64_t restForFiles = 0;  // nor in parts
    };

    void Note(Waiting* waiting, uint64_t now) const;
    std::optional<uint64_t> DueTime(const Waiting& waiting) const;
    std::optional<uint64_t> AllDue(const Waiting& waiting) const;
    std::optional<uint64_t> FilesDue(const Waiting& waiting) const;

    const WatchWaits waits_;
    std::map<int, Waiting> sources_;
};

}  // namespace pavex
