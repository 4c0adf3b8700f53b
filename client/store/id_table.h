// client/store/id_table.h: a set of note ids, kept as runs of consecutive ones.
// Notes that were imported together make one run, so a table of a million notes is a few bytes.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "platform/store.h"

namespace pavex {

constexpr NOTEID kDeletionBit = 0x80000000;

class IdTable {
public:
    // Before anything is asked, in any order, twice does no harm.
    void Add(NOTEID id);
    // Once, after the last Add.
    void Sort();

    uint32_t Count() const;
    bool Empty() const { return runs_.empty(); }
    // Ascending, unsigned; a non-zero answer ends the walk and is returned.
    STATUS Visit(const std::function<STATUS(NOTEID)>& callback) const;

private:
    struct Run {
        NOTEID first;
        NOTEID last;
    };
    std::vector<Run> runs_;
};

}  // namespace pavex
