// client/app/desktop_command.cpp: pavex desktop: the client stays, with a window of its own.
#include "client/app/addin_host.h"
#include "client/app/command.h"
#include "client/app/instance_lock.h"
#include "client/app/signals.h"
#include "client/app/watching.h"
#include "client/app/window_front_end.h"
#include "client/store/descriptor.h"

namespace pavex {

namespace {

int RunDesktop()
{
    HoldSignals();
    const Descriptor signals(OpenSignalDescriptor());
    std::string error;
    const std::unique_ptr<WindowFrontEnd> frontEnd = LoadWindowFrontEnd(kSettingsWindowWords, signals.Get(), &error);
    if (frontEnd == nullptr)
        return Fail(error);
    const DisplayGuard guard(kSettingsWindowWords);
    const std::optional<InstanceLock> lock = InstanceLock::Take(&error);
    if (!lock)
        return Fail(error);
    const std::unique_ptr<AddIn> addIn = AddIn::Load(&error);
    if (addIn == nullptr)
        return Fail(error);
    SetFrontEnd(frontEnd.get());
    ClientWindowContent content;
    if (addIn->Start())
        content.menuText = addIn->MenuText();
    content.openDialog = [&addIn] { addIn->OpenDialog(); };
    content.log = CurrentPlaces().log;
    const std::unique_ptr<Watcher> watcher = StartWatching();
    frontEnd->RunClient(content);
    if (watcher != nullptr)
        watcher->RequestStop();  // both threads end at the same time
    addIn->Stop();
    SetFrontEnd(nullptr);
    if (const std::string failed = TakeFailedWrite(); !failed.empty())
        return Fail(failed);
    return kExitDone;
}

}  // namespace

CommandFunction ConfigureDesktop(CLI::App&)
{
    return RunDesktop;
}

}  // namespace pavex
