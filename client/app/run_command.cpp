// client/app/run_command.cpp: pavex run: the client stays, the add-in keeps the metadata up to date.
#include <set>

#include "client/app/addin_host.h"
#include "client/app/command.h"
#include "client/app/instance_lock.h"
#include "client/app/signals.h"
#include "client/app/unindexed_targets.h"
#include "client/app/watching.h"

namespace pavex {

namespace {

constexpr int kLookAroundMs = 10000;

// told: the lines that were printed already.
void WarnOfUnindexedTargets(std::set<std::string>* told)
{
    for (const std::string& line : TellUnindexedTargets(ReadWatchList(), LoadReadRecords(CurrentPlaces().data)))
        if (told->insert(line).second)
            Warn(line + ", then end pavex run and start it again");
}

int Run()
{
    HoldSignals();
    std::string error;
    const std::optional<InstanceLock> lock = InstanceLock::Take(&error);
    if (!lock)
        return Fail(error);
    const std::unique_ptr<AddIn> addIn = AddIn::Load(&error);
    if (addIn == nullptr)
        return Fail(error);
    if (!addIn->Start())
        Log("the desktop search add-in shows no menu entry: the administrator's policy locks it or hides it");
    const std::unique_ptr<Watcher> watcher = StartWatching();
    std::set<std::string> told;
    do
        WarnOfUnindexedTargets(&told);
    while (!WaitForSignal(kLookAroundMs));
    if (watcher != nullptr)
        watcher->RequestStop();  // both threads end at the same time
    addIn->Stop();
    return kExitDone;
}

}  // namespace

CommandFunction ConfigureRun(CLI::App&)
{
    return Run;
}

}  // namespace pavex
