// tests/support/fault_plan.h: makes the n-th platform call fail, or the process die at it.
// The linker routes the calls listed in fault_plan.cpp through here (--wrap); the code under test has no
// line for it.  Link the target fault_plan.
#pragma once

#include "platform/store.h"

// While it lives, the failing-th faulty call (counted from 1) of this thread fails with `status`, or in the
// call's own way: null, 0 or false.
class FaultPlan {
public:
    explicit FaultPlan(int failing, STATUS status = kStatusIoError);
    ~FaultPlan();
    FaultPlan(const FaultPlan&) = delete;
    FaultPlan& operator=(const FaultPlan&) = delete;

    bool Fired() const;        // the run came as far as the failing call
    const char* Name() const;  // its name, "" when it did not
};

// While it lives, every call with this name fails.
class NamedFault {
public:
    explicit NamedFault(const char* name, STATUS status = kStatusIoError);
    ~NamedFault();
    NamedFault(const NamedFault&) = delete;
    NamedFault& operator=(const NamedFault&) = delete;
};

// From now on the process ends at once, as by SIGKILL, before the n-th call that changes a file or
// commits a database (counted from 1, on any thread).
void DieAtChange(int change);
// Changes so far since DieAtChange(0) or the start.
int ChangesSoFar();
