// client/app/settings_window.cpp: the settings dialog as a window, while the add-in indexes in this process.
#include "client/app/addin_host.h"
#include "client/app/command.h"
#include "client/app/instance_lock.h"
#include "client/app/signals.h"
#include "client/app/window_front_end.h"
#include "client/store/descriptor.h"

namespace pavex {

int ShowSettingsWindow()
{
    HoldSignals();
    const Descriptor signals(OpenSignalDescriptor());
    std::string error;
    const std::unique_ptr<FrontEnd> frontEnd = LoadWindowFrontEnd(kSettingsWindowWords, signals.Get(), &error);
    if (frontEnd == nullptr)
        return Fail(error);
    const DisplayGuard guard(kSettingsWindowWords);
    const std::unique_ptr<AddIn> addIn = AddIn::Load(&error);
    if (addIn == nullptr)
        return Fail(error);
    // Beside a client that is at work the window shows what that one has saved.
    const std::optional<InstanceLock> lock = InstanceLock::Take(&error);
    if (lock)
        addIn->Start();
    else
        Log("the settings window indexes nothing: " + error);
    SetFrontEnd(frontEnd.get());
    addIn->OpenDialog();
    if (lock)
        addIn->Stop();
    SetFrontEnd(nullptr);
    if (const std::string failed = TakeFailedWrite(); !failed.empty())
        return Fail(failed);
    return kExitDone;
}

}  // namespace pavex
