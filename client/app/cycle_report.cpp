// client/app/cycle_report.cpp: what a cycle did, put together from the add-in's log entries.
#include "client/app/cycle_report.h"

#include <algorithm>
#include <iterator>

#include "strings/string_ids.h"

namespace pavex {

namespace {

std::string TextArgument(const LogEntry& entry, size_t index)
{
    if (index >= entry.arguments.size())
        return {};
    const auto* const text = std::get_if<std::string>(&entry.arguments[index]);
    return text != nullptr ? *text : std::string();
}

uint64_t NumberArgument(const LogEntry& entry, size_t index)
{
    if (index >= entry.arguments.size())
        return 0;
    const auto* const number = std::get_if<int64_t>(&entry.arguments[index]);
    return number != nullptr ? static_cast<uint32_t>(*number) : 0;
}

constexpr uint32_t kDebugEntries[] = {
    kLogNoNote,          kLogSendFailed,  kLogPropertyFailed, kLogIndexingOff,   kLogIndexUnavailable,
    kLogOpened,          kLogLoop,        kLogStopRequested,  kLogProgressReset, kLogListed,
    kLogNothingModified, kLogPassStopped, kLogNoteNotOpened,  kLogNoteUrl,       kLogPoll,
};

}  // namespace

bool IsDebugEntry(uint32_t id)
{
    return std::find(std::begin(kDebugEntries), std::end(kDebugEntries), id) != std::end(kDebugEntries);
}

void CycleReport::Take(const LogEntry& entry)
{
    const std::lock_guard lock(mutex_);
    const std::string path = TextArgument(entry, 0);
    switch (entry.id) {
    case kLogOpened:
        current_ = path;
        notes_ = 0;
        break;
    case kLogNoteUrl:
        ++notes_;
        break;
    case kLogThreadNotStarted:
        threadFailed_ = true;
        break;
    case kLogIndexingOff:
        obstacle_ = "indexing was switched off meanwhile";
        break;
    case kLogIndexUnavailable:
        obstacle_ = "the desktop search is not available";
        break;
    case kLogPassCounters:
        Add(path, {NumberArgument(entry, 1), NumberArgument(entry, 2), NumberArgument(entry, 3),
                   NumberArgument(entry, 4), NumberArgument(entry, 5), entry.status});
        break;
    case kLogNothingModified:
        Add(path, {0, 0, 0, 0, 0, kStatusNothingModified});
        break;
    case kLogCannotOpen:
    case kLogNoModifiedTime:
    case kLogNotListed:
        Add(path, {0, 0, 0, 0, 0, entry.status});
        break;
    default:  // the other entries tell nothing about a pass
        break;
    }
}

void CycleReport::Add(const std::string& path, const PassResult& pass)
{
    current_.clear();
    const auto [known, isNew] = results_.try_emplace(path, pass);
    if (isNew)
        return;
    PassResult& result = known->second;
    result.indexed += pass.indexed;
    result.skipped += pass.skipped;
    result.errors += pass.errors;
    result.blankFailures += pass.blankFailures;
    result.deleted += pass.deleted;
    if (pass.status != kStatusNothingModified)
        result.status = pass.status;
}

std::optional<PassResult> CycleReport::ResultOf(const std::string& path) const
{
    const std::lock_guard lock(mutex_);
    const auto known = results_.find(path);
    if (known == results_.end())
        return std::nullopt;
    return known->second;
}

bool CycleReport::ThreadFailed() const
{
    const std::lock_guard lock(mutex_);
    return threadFailed_;
}

std::string CycleReport::Obstacle() const
{
    const std::lock_guard lock(mutex_);
    return obstacle_;
}

std::string CycleReport::Activity() const
{
    const std::lock_guard lock(mutex_);
    return current_.empty() ? "" : current_ + ": " + std::to_string(notes_) + " notes";
}

nlohmann::ordered_json JsonOf(const PassResult& result)
{
    return {{"indexed", result.indexed}, {"skipped", result.skipped},
            {"errors", result.errors},   {"blank_failures", result.blankFailures},
            {"deleted", result.deleted}, {"status", result.status}};
}

}  // namespace pavex
