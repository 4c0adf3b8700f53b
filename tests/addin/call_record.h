// tests/addin/call_record.h: what the add-in asks of its thread, and what a pass hands to the indexers.
// The linker routes the calls through call_record.cpp (--wrap); the code under test has no line for it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "addin/index_context.h"

// Records while it lives; one at a time, for calls of one thread.
class CallRecord {
public:
    CallRecord();
    ~CallRecord();
    CallRecord(const CallRecord&) = delete;
    CallRecord& operator=(const CallRecord&) = delete;

    static constexpr int kNeverSet = 99;
    int priority = kNeverSet;                             // the last one set
    std::vector<std::string> pauses;                      // "preempt at -1", "delay 1000 at -1", in order
    std::vector<int> stackKinds;                          // kinds of thread whose stack size was asked for
    int threadEnds = 0;                                   // calls of PavexTermThread
    std::function<void(const INDEXCONTEXT&)> beforeNote;  // called before a note goes to its indexer
    std::function<void()> beforeEntry;                    // called at every question whether the client ends
};
