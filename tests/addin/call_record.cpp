// tests/addin/call_record.cpp: the wrappers of the recorded calls.
#include "tests/addin/call_record.h"

namespace {

CallRecord* current = nullptr;

void RecordPause(const std::string& pause)
{
    if (current != nullptr)
        current->pauses.push_back(pause + " at " + std::to_string(current->priority));
}

}  // namespace

CallRecord::CallRecord()
{
    current = this;
}

CallRecord::~CallRecord()
{
    current = nullptr;
}

// The names are the linker's.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void __real_OSSetThreadPriority(int);
void __real_OSPreempt(void);
void __real_OSDelayThread(DWORD);
DWORD __real_OSGetDefaultThreadStackBytes(WORD);
void __real_PavexTermThread(void);
bool __real_AddInShouldTerminate(void);
bool __real__Z9IndexNotejP12INDEXCONTEXT(NOTEHANDLE, INDEXCONTEXT*);

void __wrap_OSSetThreadPriority(int priority)
{
    if (current != nullptr)
        current->priority = priority;
    __real_OSSetThreadPriority(priority);
}

void __wrap_OSPreempt(void)
{
    RecordPause("preempt");
    __real_OSPreempt();
}

void __wrap_OSDelayThread(DWORD milliseconds)
{
    RecordPause("delay " + std::to_string(milliseconds));
    __real_OSDelayThread(milliseconds);
}

DWORD __wrap_OSGetDefaultThreadStackBytes(WORD kind)
{
    if (current != nullptr)
        current->stackKinds.push_back(kind);
    return __real_OSGetDefaultThreadStackBytes(kind);
}

void __wrap_PavexTermThread(void)
{
    if (current != nullptr)
        ++current->threadEnds;
    __real_PavexTermThread();
}

bool __wrap_AddInShouldTerminate(void)
{
    if (current != nullptr && current->beforeEntry)
        current->beforeEntry();
    return __real_AddInShouldTerminate();
}

bool __wrap__Z9IndexNotejP12INDEXCONTEXT(NOTEHANDLE note, INDEXCONTEXT* context)
{
    if (current != nullptr && current->beforeNote)
        current->beforeNote(*context);
    return __real__Z9IndexNotejP12INDEXCONTEXT(note, context);
}
}
// NOLINTEND(bugprone-reserved-identifier)
