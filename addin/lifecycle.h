// addin/lifecycle.h: start, stop and steering of the indexing thread.
#pragma once

#include <atomic>
#include <cstdint>

// Run statistics of the current non-history pass, copied whole for the status display.  The fields are
// lock-free and of the stated widths, so that the dialog may copy them while a pass counts.
struct PLUGINCONTEXT {
    std::atomic<uint32_t> indexed;
    std::atomic<uint32_t> skipped;
    std::atomic<uint32_t> errors;
    std::atomic<uint32_t> blankFailures;
    std::atomic<uint32_t> deleted;
    std::atomic<uint8_t> resumed;        // the current pass continues an interrupted one, or will be continued
    std::atomic<uint8_t> upToDate;       // the last pass ended complete or found nothing modified
    std::atomic<uint8_t> historyActive;  // a history pass is inside its note callback
    std::atomic<uint8_t> inProgress;     // a non-history pass is enumerating notes
    std::atomic<uint32_t> passFlag;      // never set by the engine; the status display tests its low byte
    std::atomic<uint32_t> total;         // entries in the pass's table of modified notes
    std::atomic<uint32_t> processed;     // notes visited, those skipped by a resume included
    std::atomic<uint32_t> database;      // slot, 0..14
};
static_assert(sizeof(PLUGINCONTEXT) == 40);

constexpr int kDatabaseSlots = 15;  // slots 0..14; the history database is slot 15

// Written by the client's thread, polled by the indexing thread; defined in addin/lifecycle.cpp.
extern std::atomic<uint8_t> bStarted;                 // message 0 was handled; never cleared
extern std::atomic<uint8_t> bThreadExists;            // the thread was created; never cleared
extern std::atomic<uint8_t> bShutDownThread;          // the thread is to end
extern std::atomic<uint8_t> bStopAndReset;            // the pass is to be abandoned and all progress forgotten
extern std::atomic<uint8_t> bStartSoon;               // the wait is to end and a cycle to begin
extern std::atomic<uint32_t> dwIdleDelay;             // milliseconds; the next wait, when 1..period
extern std::atomic<uint32_t> dwHistoryCount;          // system timer at the last history pass, milliseconds
extern std::atomic<uint8_t> bLogged[kDatabaseSlots];  // an open failure of the slot is in the log already
extern std::atomic<uint8_t> bLoggedHistory;
extern PLUGINCONTEXT GlobalContext;  // written by the indexing thread

// The settings dialog's, written from dialog/ alone on the client's main thread; defined in addin/lifecycle.cpp.
extern int numIniFiles;   // databases that the saved settings hold, as the dialog last loaded or saved them
extern bool bSaveOnExit;  // OK and Apply save only while this is set

// False when the administrator's policy locks the add-in off.  Asks the policy on the client's main
// thread only; elsewhere the last answer counts.  Once locked, locked for the life of the process.
bool ShouldStartPlugin();
// Starts the indexing thread unless it exists; true when it exists afterwards.
bool PavexDesktopIndex();
// Asks the indexing thread to end; does not wait for it.  Returns true.
bool PavexDesktopTerm();
// The thread's body.
void ThreadProc(void* arg);

// Abandons the current pass and forgets the progress of all slots.
void StopAndReset();
// Clears the progress records of all slots, the history slot's too.
void ForgetAllProgress();
// Open failures are logged once more.
void ResetLog();
// Brings the next cycle forward.
void StartSoon();
// A copy of the statistics; single fields may be one poll apart.
void CopyPluginStatistics(PLUGINCONTEXT* out);
// Opens the settings dialog modally.  Returns what the dialog ended with.
long RunAddInDialog(unsigned long argument);
