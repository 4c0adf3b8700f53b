// client/watch/complaints.cpp: what is said of a source that is read again and again: each thing once.
#include "client/watch/complaints.h"

#include <functional>
#include <utility>

namespace pavex {

namespace {

constexpr size_t kMostLines = 20;  // of one reading; the log is for people

}  // namespace

std::vector<std::string> Complaints::TakeNew(const ImportReport& report, const std::string& error, bool all)
{
    std::unordered_set<size_t> met;
    std::vector<std::string> lines;
    size_t more = 0;
    const auto tell = [&](const std::string& line) {
        const size_t hash = std::hash<std::string>()(line);
        if (!met.insert(hash).second || known_.contains(hash))
            return;
        if (lines.size() < kMostLines)
            lines.push_back(line);
        else
            ++more;
    };
    if (!error.empty())
        tell(error);
    for (const RejectedEntry& entry : report.rejected)
        tell("rejected " + entry.where + ": " + entry.reason);
    for (const RejectedEntry& entry : report.notices)
        tell(entry.where + ": " + entry.reason);
    if (more != 0)
        lines.push_back("and " + std::to_string(more) + " more, which pavex import shows");
    if (all && error.empty())
        known_ = std::move(met);
    else
        known_.insert(met.begin(), met.end());
    return lines;
}

}  // namespace pavex
