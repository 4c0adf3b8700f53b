// addin/lifecycle.cpp: the indexing thread's start and end, and the requests that steer it.
#include "addin/lifecycle.h"

#include "addin/loop.h"
#include "dialog/settings_dialog.h"
#include "platform/store.h"
#include "platform/windows.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "strings/string_ids.h"

namespace {

constexpr unsigned int kSettingsDialog = 2070;  // dialog resource

void ClearStatistics()
{
    for (std::atomic<uint32_t>* counter :
         {&GlobalContext.indexed, &GlobalContext.skipped, &GlobalContext.errors, &GlobalContext.blankFailures,
          &GlobalContext.deleted, &GlobalContext.passFlag, &GlobalContext.total, &GlobalContext.processed,
          &GlobalContext.database})
        *counter = 0;
    for (std::atomic<uint8_t>* mark :
         {&GlobalContext.resumed, &GlobalContext.upToDate, &GlobalContext.historyActive, &GlobalContext.inProgress})
        *mark = 0;
}

}  // namespace

std::atomic<uint8_t> bStarted{0};
std::atomic<uint8_t> bThreadExists{0};
std::atomic<uint8_t> bShutDownThread{0};
std::atomic<uint8_t> bStopAndReset{0};
std::atomic<uint8_t> bStartSoon{0};
std::atomic<uint32_t> dwIdleDelay{0};
std::atomic<uint32_t> dwHistoryCount{0};
std::atomic<uint8_t> bLogged[kDatabaseSlots] = {};
std::atomic<uint8_t> bLoggedHistory{0};
PLUGINCONTEXT GlobalContext = {};

int numIniFiles = 0;       // written from dialog/ alone
bool bSaveOnExit = false;  // written from dialog/ alone

bool PavexDesktopIndex()
{
    if (bThreadExists != 0)
        return true;
    bShutDownThread = 0;
    bStopAndReset = 0;
    bStartSoon = 0;
    dwIdleDelay = 0;
    dwHistoryCount = OSGetSystemTimer();  // the first history pass waits a full minute
    ClearStatistics();
    ResetLog();
    if (OSCreateThread(ThreadProc, OSGetDefaultThreadStackBytes(0), nullptr, nullptr) == 0)
        bThreadExists = 1;
    return bThreadExists != 0;
}

bool PavexDesktopTerm()
{
    bShutDownThread = 1;
    if (IsDebug())
        LogEvent(kLogStopRequested, 0, 0);
    return true;
}

void ThreadProc(void*)
{
    OSSetThreadPriority(0);
    if (bShutDownThread != 0) {
        LogEvent(kLogThreadNotStarted, 0, 0);
        return;
    }
    if (const STATUS status = PavexInitThread(); status != 0) {
        LogEvent(kLogThreadNotStarted, 0, status);
        return;
    }
    LogEvent(kLogThreadStarted, 0, 0);
    IndexingLoop();
    PavexTermThread();
    LogEvent(kLogThreadEnded, 0, 0);
}

void StopAndReset()
{
    bStopAndReset = 1;
    ForgetAllProgress();
    dwIdleDelay = 0;
    ResetLog();
}

void ForgetAllProgress()
{
    for (int slot = 0; slot < kDatabaseSlots; ++slot)
        SetDbTimestamp(slot, nullptr, nullptr, 0, 0, 0);
    SetDbTimestamp(GetHistoryIndex(), nullptr, nullptr, 0, 0, 0);
}

void ResetLog()
{
    for (std::atomic<uint8_t>& logged : bLogged)
        logged = 0;
    bLoggedHistory = 0;
}

void StartSoon()
{
    bStartSoon = 1;
}

void CopyPluginStatistics(PLUGINCONTEXT* out)
{
    out->indexed = GlobalContext.indexed.load();
    out->skipped = GlobalContext.skipped.load();
    out->errors = GlobalContext.errors.load();
    out->blankFailures = GlobalContext.blankFailures.load();
    out->deleted = GlobalContext.deleted.load();
    out->resumed = GlobalContext.resumed.load();
    out->upToDate = GlobalContext.upToDate.load();
    out->historyActive = GlobalContext.historyActive.load();
    out->inProgress = GlobalContext.inProgress.load();
    out->passFlag = GlobalContext.passFlag.load();
    out->total = GlobalContext.total.load();
    out->processed = GlobalContext.processed.load();
    out->database = GlobalContext.database.load();
}

long RunAddInDialog(unsigned long)
{
    return UIXDialogBox(0, kSettingsDialog, DlgProc);
}
