// client/watch/change_queue.cpp: when a source that changed is read again.
#include "client/watch/change_queue.h"

#include <algorithm>
#include <utility>

namespace pavex {

namespace {

// More changed files than this of a source: it is read as a whole.
constexpr size_t kMostFiles = 1000;
constexpr uint64_t kRestFactor = 9;

std::optional<uint64_t> Earlier(std::optional<uint64_t> a, std::optional<uint64_t> b)
{
    return a && b ? std::min(*a, *b) : (a ? a : b);
}

}  // namespace

void ChangeQueue::Note(Waiting* waiting, uint64_t now) const
{
    if (!waiting->burst)
        waiting->burst = {now, now};
    waiting->burst->last = now;
}

void ChangeQueue::FileChanged(int source, const std::string& path, uint64_t now)
{
    Waiting& waiting = sources_[source];
    Note(&waiting, now);
    waiting.files.insert(path);
    if (waiting.files.size() > kMostFiles) {
        waiting.files.clear();
        waiting.all = true;
    }
}

void ChangeQueue::FoldersChanged(int source, uint64_t now)
{
    Waiting& waiting = sources_[source];
    Note(&waiting, now);
    waiting.folders = true;
}

void ChangeQueue::AllChanged(int source, uint64_t now)
{
    Waiting& waiting = sources_[source];
    Note(&waiting, now);
    waiting.all = true;
}

void ChangeQueue::AllDueAt(int source, uint64_t time)
{
    Waiting& waiting = sources_[source];
    waiting.allAt = Earlier(waiting.allAt, std::max(time, waiting.restForAll));
}

void ChangeQueue::LookAt(int source, uint64_t time)
{
    Waiting& waiting = sources_[source];
    waiting.lookAt = Earlier(waiting.lookAt, time);
}

void ChangeQueue::Forget(int source)
{
    sources_.erase(source);
}

std::optional<uint64_t> ChangeQueue::AllDue(const Waiting& waiting) const
{
    std::optional<uint64_t> due = waiting.allAt;
    if (waiting.all) {
        const Burst burst = waiting.burst.value_or(Burst{});
        const uint64_t settled = std::min(burst.last + waits_.quietMs, burst.first + waits_.longestMs);
        due = Earlier(due, std::max(settled, waiting.restForAll));
    }
    return due;
}

std::optional<uint64_t> ChangeQueue::FilesDue(const Waiting& waiting) const
{
    if (!waiting.burst || (waiting.files.empty() && !waiting.folders))
        return std::nullopt;
    const uint64_t settled = std::min(waiting.burst->last + waits_.quietMs, waiting.burst->first + waits_.longestMs);
    return waiting.folders ? settled : std::max(settled, waiting.restForFiles);
}

std::optional<uint64_t> ChangeQueue::DueTime(const Waiting& waiting) const
{
    return Earlier(Earlier(AllDue(waiting), FilesDue(waiting)), waiting.lookAt);
}

std::optional<uint64_t> ChangeQueue::NextDue() const
{
    std::optional<uint64_t> next;
    for (const auto& [source, waiting] : sources_)
        next = Earlier(next, DueTime(waiting));
    return next;
}

std::optional<DueWork> ChangeQueue::Take(uint64_t now)
{
    const auto next = std::min_element(sources_.begin(), sources_.end(), [this](const auto& a, const auto& b) {
        const std::optional<uint64_t> dueA = DueTime(a.second);
        const std::optional<uint64_t> dueB = DueTime(b.second);
        return dueA && (!dueB || *dueA < *dueB);
    });
    const auto isDue = [now](std::optional<uint64_t> due) { return due && *due <= now; };
    if (next == sources_.end() || !isDue(DueTime(next->second)))
        return std::nullopt;
    auto& [source, waiting] = *next;
    DueWork work;
    work.source = source;
    work.look = isDue(waiting.lookAt);
    work.all = isDue(AllDue(waiting));
    if (work.all || isDue(FilesDue(waiting))) {
        work.folders = std::exchange(waiting.folders, false);
        work.files = std::exchange(waiting.files, {});
    }
    if (work.all) {
        waiting.all = false;
        waiting.allAt.reset();
        work.files.clear();
    }
    if (work.look)
        waiting.lookAt.reset();
    if (!waiting.all && !waiting.folders && waiting.files.empty())
        waiting.burst.reset();
    return work;
}

void ChangeQueue::Read(int source, bool all, uint64_t began, uint64_t ended)
{
    const auto found = sources_.find(source);
    if (found == sources_.end())
        return;
    const uint64_t until = ended + std::min((ended - began) * kRestFactor, waits_.longestRestMs);
    (all ? found->second.restForAll : found->second.restForFiles) = until;
}

}  // namespace pavex
