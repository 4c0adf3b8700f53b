// client/store/id_table.cpp: a set of note ids, kept as runs of consecutive ones.
#include "client/store/id_table.h"

#include <algorithm>

namespace pavex {

void IdTable::Add(NOTEID id)
{
    if (!runs_.empty() && runs_.back().last + 1 == id && id != 0)
        runs_.back().last = id;
    else
        runs_.push_back({id, id});
}

void IdTable::Sort()
{
    std::sort(runs_.begin(), runs_.end(), [](const Run& a, const Run& b) { return a.first < b.first; });
    std::vector<Run> merged;
    for (const Run& run : runs_) {
        // In 64 bits: the run before may end at the greatest id.
        if (!merged.empty() && run.first <= uint64_t{merged.back().last} + 1)
            merged.back().last = std::max(merged.back().last, run.last);
        else
            merged.push_back(run);
    }
    merged.shrink_to_fit();
    runs_ = std::move(merged);
}

uint32_t IdTable::Count() const
{
    uint32_t count = 0;
    for (const Run& run : runs_)
        count += run.last - run.first + 1;
    return count;
}

STATUS IdTable::Visit(const std::function<STATUS(NOTEID)>& callback) const
{
    for (const Run& run : runs_) {
        for (uint64_t id = run.first; id <= run.last; ++id) {
            if (const STATUS status = callback(static_cast<NOTEID>(id)); status != 0)
                return status;
        }
    }
    return 0;
}

}  // namespace pavex
