// client/import/thread_index.cpp
#include "client/import/thread_index.h"

#include <functional>

namespace pavex {

PostingLevel ThreadIndex::Add(std::string_view id, std::string_view parent, int references)
{
    const std::hash<std::string_view> hash;
    const bool answers = references > 0 || !parent.empty();
    if (!id.empty())
        answers_[hash(id)] = answers;
    if (!answers)
        return PostingLevel::kTopic;
    const auto known = answers_.find(hash(parent));
    const bool deeper = references > 1 || (known != answers_.end() && known->second);
    return deeper ? PostingLevel::kResponseToResponse : PostingLevel::kResponse;
}

}  // namespace pavex
