// client/watch/watcher.cpp: reads the watched sources in again when they change, on a thread of its own.
#include "client/watch/watcher.h"

#include <system_error>
#include <thread>

#include "client/store/host.h"
#include "client/watch/low_priority.h"
#include "client/watch/stop_request.h"
#include "client/watch/watch_lock.h"
#include "client/watch/watch_loop.h"

namespace pavex {

struct Watcher::Parts {
    explicit Parts(const Settings& settings) : lock(CurrentPlaces().data), loop(settings, stop) {}

    const WatchLock lock;
    StopRequest stop;
    WatchLoop loop;
    std::thread thread;
};

std::unique_ptr<Watcher> Watcher::Start(const Settings& settings, std::string* error)
{
    auto parts = std::make_unique<Parts>(settings);
    if (!parts->stop.IsUsable()) {
        *error = "no pipe is to be had";
        return nullptr;
    }
    try {
        parts->thread = std::thread([loop = &parts->loop] {
            LowerOwnPriority();
            loop->Run();
        });
    } catch (const std::system_error& failure) {
        *error = failure.what();
        return nullptr;
    }
    return std::unique_ptr<Watcher>(new Watcher(std::move(parts)));
}

Watcher::Watcher(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

void Watcher::RequestStop()
{
    parts_->stop.Make();
}

Watcher::~Watcher()
{
    RequestStop();
    parts_->thread.join();
}

}  // namespace pavex
