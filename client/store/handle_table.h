// client/store/handle_table.h: the objects behind the handles that the C calls give out.
// A handle is never 0 and is not used twice within 2^32 handles, so that a stale one is noticed.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "platform/store.h"

namespace pavex {

// Handles of every kind that are open in the process: what OpenHandles() answers.
inline std::atomic<int> openHandleCount{0};
// Databases that the thread has open through VLTDbOpen: what OpenDatabasesOfThread() answers.
inline thread_local int openDatabasesOfThread = 0;

// Objects are used by one thread at a time each; the table itself takes a lock.
template <typename Object> class HandleTable {
public:
    DWORD Add(std::unique_ptr<Object> object)
    {
        const std::lock_guard lock(mutex_);
        do
            ++last_;
        while (last_ == 0 || objects_.contains(last_));
        objects_.emplace(last_, std::move(object));
        ++openHandleCount;
        return last_;
    }
    // Borrowed until Remove; null for a handle that is not open.
    Object* Find(DWORD handle)
    {
        const std::lock_guard lock(mutex_);
        const auto found = objects_.find(handle);
        return found == objects_.end() ? nullptr : found->second.get();
    }
    std::unique_ptr<Object> Remove(DWORD handle)
    {
        const std::lock_guard lock(mutex_);
        auto node = objects_.extract(handle);
        if (node.empty())
            return nullptr;
        --openHandleCount;
        return std::move(node.mapped());
    }

private:
    std::mutex mutex_;
    std::unordered_map<DWORD, std::unique_ptr<Object>> objects_;
    DWORD last_ = 0;
};

}  // namespace pavex
