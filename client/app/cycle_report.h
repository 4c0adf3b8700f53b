// client/app/cycle_report.h: what a cycle did, put together from the add-in's log entries.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "client/store/host.h"
#include "platform/store.h"

namespace pavex {

struct PassResult {
    uint64_t indexed = 0;
    uint64_t skipped = 0;
    uint64_t errors = 0;
    uint64_t blankFailures = 0;
    uint64_t deleted = 0;
    STATUS status = 0;
};

// Takes log entries on the add-in's thread, answers on any.
class CycleReport {
public:
    void Take(const LogEntry& entry);

    // The passes over a database; a pass that did something tells more than one that found nothing.
    std::optional<PassResult> ResultOf(const std::string& path) const;
    // The add-in's thread could not begin its work.
    bool ThreadFailed() const;
    // Why the add-in made no cycle at all; empty when it told of nothing.
    std::string Obstacle() const;
    // The database being read and the notes seen in it so far; empty between passes.
    std::string Activity() const;

private:
    void Add(const std::string& path, const PassResult& pass);

    mutable std::mutex mutex_;
    std::map<std::string, PassResult> results_;  // by path, UTF-8
    std::string current_;
    uint64_t notes_ = 0;
    bool threadFailed_ = false;
    std::string obstacle_;
};

// True for the entries that the add-in writes only when debugging; the counters of a pass are wanted always.
bool IsDebugEntry(uint32_t id);

nlohmann::ordered_json JsonOf(const PassResult& result);

}  // namespace pavex
