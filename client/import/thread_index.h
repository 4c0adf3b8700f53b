// client/import/thread_index.h: how deep in its thread a posting of a discussion stands.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>

namespace pavex {

enum class PostingLevel : uint8_t { kTopic, kResponse, kResponseToResponse };

// Remembers the postings of an import by a hash of their ids, some forty bytes each.
class ThreadIndex {
public:
    // Learns of a posting and gives its level, as far as its parent is known by now.
    //   id          its own; empty: none
    //   parent      that it answers; empty: none
    //   references  how many postings lie before it by its own account: more than one means that its parent
    //               is an answer too, also where the parent was never seen
    PostingLevel Add(std::string_view id, std::string_view parent, int references);

private:
    std::unordered_map<size_t, bool> answers_;  // whether a posting answers another
};

}  // namespace pavex
