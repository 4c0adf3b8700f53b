// client/store/threads.cpp: threads that the program waits for before it ends.
#include <pthread.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <vector>

#include "client/store/host.h"
#include "platform/store.h"

namespace {

constexpr DWORD kDefaultStackBytes = 1024 * 1024;
constexpr size_t kLeastStackBytes = size_t{256} * 1024;

struct ThreadStart {
    void (*entry)(void*);
    void* arg;
};

std::mutex threadsMutex;           // guards `threads`
std::vector<pthread_t> threads;    // made and not joined yet; written in this file only
thread_local int initialized = 0;  // PavexInitThread calls without their PavexTermThread

void* RunThread(void* context)
{
    const std::unique_ptr<ThreadStart> start(static_cast<ThreadStart*>(context));
    start->entry(start->arg);
    return nullptr;
}

class ThreadAttributes {
public:
    explicit ThreadAttributes(DWORD stackBytes)
    {
        pthread_attr_init(&attributes_);
        const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        const size_t bytes = std::max<size_t>(stackBytes == 0 ? kDefaultStackBytes : stackBytes, kLeastStackBytes);
        pthread_attr_setstacksize(&attributes_, (bytes + page - 1) / page * page);
    }
    ~ThreadAttributes() { pthread_attr_destroy(&attributes_); }
    ThreadAttributes(const ThreadAttributes&) = delete;
    ThreadAttributes& operator=(const ThreadAttributes&) = delete;
    const pthread_attr_t* Get() const { return &attributes_; }

private:
    pthread_attr_t attributes_;
};

}  // namespace

DWORD OSGetDefaultThreadStackBytes(WORD)
{
    return kDefaultStackBytes;
}

STATUS OSCreateThread(void (*entry)(void*), DWORD stackBytes, void* arg, DWORD* thread)
{
    auto start = std::make_unique<ThreadStart>(ThreadStart{entry, arg});
    const ThreadAttributes attributes(stackBytes);
    const std::lock_guard lock(threadsMutex);
    pthread_t made;
    if (pthread_create(&made, attributes.Get(), RunThread, start.get()) != 0)
        return kStatusNoMemory;
    (void)start.release();  // the thread's now
    threads.push_back(made);
    static DWORD lastNumber = 0;
    ++lastNumber;
    if (thread != nullptr)
        *thread = lastNumber;
    return kStatusOk;
}

void OSSetThreadPriority(int priority)
{
    // Not the nice value: a thread without rights could lower it and never raise it again.
#ifdef SCHED_BATCH
    const sched_param none{};
    pthread_setschedparam(pthread_self(), priority < 0 ? SCHED_BATCH : SCHED_OTHER, &none);
#else
    (void)priority;
#endif
}

STATUS PavexInitThread(void)
{
    ++initialized;
    return kStatusOk;
}

void PavexTermThread(void)
{
    if (initialized > 0)
        --initialized;
}

namespace pavex {

int ThreadsMade()
{
    const std::lock_guard lock(threadsMutex);
    return static_cast<int>(threads.size());
}

void JoinThreads()
{
    for (;;) {
        pthread_t thread;
        {
            const std::lock_guard lock(threadsMutex);
            const auto other = std::find_if(threads.begin(), threads.end(), [](pthread_t candidate) {
                return pthread_equal(candidate, pthread_self()) == 0;  // nobody can wait for himself
            });
            if (other == threads.end())
                return;
            thread = *other;
            threads.erase(other);
        }
        pthread_join(thread, nullptr);
    }
}

}  // namespace pavex
