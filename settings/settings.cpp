// settings/settings.cpp: the add-in's variables in the client's ini file.
// The one place that knows their names and defaults.  The table below is every switch there is; the
// load and the setters are loops over it.
#include "settings/settings.h"

#include <cstring>
#include <mutex>

#include "addin/lifecycle.h"
#include "platform/store.h"
#include "settings/progress.h"

std::atomic<uint8_t> bIniInit{0};
std::atomic<uint8_t> bAdminLock{0};
std::atomic<uint8_t> bAdminNoUI{0};
std::atomic<uint8_t> bAdminOverride{0};
std::atomic<uint8_t> bIniDebug{0};
std::atomic<uint8_t> bIniDebugLots{0};
std::atomic<uint8_t> bIniIndexEncrypted{0};
std::atomic<uint8_t> bIniInstallInstruct{0};
std::atomic<uint8_t> bIniIndexRemote{0};
std::atomic<uint8_t> bIniIndexDrafts{0};
std::atomic<uint8_t> bIniIndexChats{1};
std::atomic<uint8_t> bIniDelete{1};
std::atomic<uint8_t> bIniOnIdle{0};
std::atomic<uint8_t> bIniIndexDiscussion{0};
std::atomic<uint8_t> bIniIndexHistory{1};
std::atomic<uint8_t> bIniIndexAllNotes{1};
std::atomic<uint8_t> bIniSkipLegal{0};
std::atomic<uint8_t> bIniInhouse{0};
std::atomic<uint8_t> bIniComputeOk{0};
std::atomic<uint32_t> dwIniFreq{5};
std::atomic<uint32_t> dwIniWaitTime{20};
std::atomic<uint32_t> dwQueryCookie{0};
std::atomic<uint32_t> bJustRegistered{0};
std::atomic<uint32_t> dwGoogleSupport{kNoteKindsDefault};
std::atomic<uint32_t> dwIdleCount{0};
char szDataFields[kDataFieldsBytes] = "";

static_assert(std::atomic<uint8_t>::is_always_lock_free && sizeof(std::atomic<uint8_t>) == 1);
static_assert(std::atomic<uint32_t>::is_always_lock_free && sizeof(std::atomic<uint32_t>) == 4);

namespace {

constexpr uint32_t kDefaultFreqMinutes = 5;
constexpr uint32_t kLongestFreqMinutes = 99;
constexpr uint32_t kDefaultWaitMs = 20;
constexpr uint32_t kIdleTicks = 9;
constexpr uint16_t kStatusReady = 0xC06F;
constexpr int kHistorySlot = 15;

constexpr const char* kEnabledKey = "GDSIndexEnabled";
constexpr const char* kFreqKey = "GDSFreqMinutes";
constexpr const char* kWaitKey = "GoogleWaitTime";
constexpr const char* kCookieKey = "GDSInstallTime2";
constexpr const char* kDataFieldsKey = "GoogleDataFields";

struct SwitchRow {
    const char* key;  // as it stands in the ini file
    std::atomic<uint8_t>* flag;
    bool inverted;  // the variable switches off what the flag says is on
};

// In the order in which they are read.
constexpr SwitchRow kSwitches[] = {
    {"AdminGDSLock", &bAdminLock, false},
    {"AdminGDSNoMenu", &bAdminNoUI, false},
    {"AdminGDS", &bAdminOverride, false},
    {"GoogleDebug", &bIniDebug, false},
    {"GoogleDebugLots", &bIniDebugLots, false},
    {"GDSIndexEncrypted", &bIniIndexEncrypted, false},
    {"GDSInstallInstructions", &bIniInstallInstruct, false},
    {"GoogleAllowRemote", &bIniIndexRemote, false},
    {"GDSIndexDrafts", &bIniIndexDrafts, false},
    {"GDSNoIndexChats", &bIniIndexChats, true},
    {"GoogleNoDelete", &bIniDelete, true},
    {"GDSIndexOnIdle", &bIniOnIdle, false},
    {"GDSIndexDiscussion", &bIniIndexDiscussion, false},
    {"GDSNoIndexHistory", &bIniIndexHistory, true},
    {"GoogleNoIndexAll", &bIniIndexAllNotes, true},
    {"GoogleSkipLegal", &bIniSkipLegal, false},
    {"GoogleBuildQuorvex", &bIniInhouse, false},
    {"GoogleComputeOK", &bIniComputeOk, false},
};

std::mutex dataFieldsLock;  // guards szDataFields

template <typename Value> Value Read(const std::atomic<Value>& global)
{
    return global.load(std::memory_order_relaxed);
}

template <typename Value> void Write(std::atomic<Value>& global, Value value)
{
    global.store(value, std::memory_order_relaxed);
}

void EnsureLoaded()
{
    if (Read(bIniInit) == 0)
        getIniVariables();
}

bool IsOn(const std::atomic<uint8_t>& flag)
{
    EnsureLoaded();
    return Read(flag) != 0;
}

// Writes the flag's variable when the value is new.
void SetSwitch(std::atomic<uint8_t>& flag, bool on)
{
    EnsureLoaded();
    if ((Read(flag) != 0) != on) {
        for (const SwitchRow& row : kSwitches) {
            if (row.flag == &flag)
                OSSetEnvironmentInt(row.key, on != row.inverted ? 1 : 0);
        }
    }
    Write(flag, static_cast<uint8_t>(on));
}

// 1..99 minutes; nothing becomes the default, and what is out of range the longest.
uint32_t FreqFromLong(long minutes)
{
    if (minutes == 0)
        return kDefaultFreqMinutes;
    return minutes < 0 || minutes > long{kLongestFreqMinutes} ? kLongestFreqMinutes : static_cast<uint32_t>(minutes);
}

// 0 is a value here (no pause), so that absence must be asked for.
uint32_t LoadWaitTime()
{
    char probe[2];
    if (!OSGetEnvironmentString(kWaitKey, probe, sizeof probe))
        return kDefaultWaitMs;
    return static_cast<uint32_t>(OSGetEnvironmentLong(kWaitKey));
}

void LoadDataFields()
{
    const std::lock_guard guard(dataFieldsLock);
    if (!OSGetEnvironmentString(kDataFieldsKey, szDataFields, sizeof szDataFields))
        szDataFields[0] = '\0';
}

}  // namespace

void getIniVariables()
{
    // set first: a question from inside the load, or from another thread, is answered with what is there
    if (bIniInit.exchange(1, std::memory_order_relaxed) != 0)
        return;
    for (const SwitchRow& row : kSwitches) {
        if (OSGetEnvironmentLong(row.key) != 0)
            Write(*row.flag, static_cast<uint8_t>(!row.inverted));
    }
    Write(dwIniFreq, FreqFromLong(OSGetEnvironmentLong(kFreqKey)));
    Write(dwIniWaitTime, LoadWaitTime());
    Write(dwQueryCookie, static_cast<uint32_t>(OSGetEnvironmentLong(kCookieKey)));
    LoadDataFields();
    getIniMailInfo();
}

void RereadSwitches()
{
    for (const SwitchRow& row : kSwitches)
        Write(*row.flag, static_cast<uint8_t>((OSGetEnvironmentLong(row.key) != 0) != row.inverted));
}

bool HasAdminLockFiles()
{
    return IsOn(bAdminLock);
}

bool HasAdminLockUI()
{
    return IsOn(bAdminNoUI);
}

bool HasAdminOverride()
{
    return IsOn(bAdminOverride);
}

bool IsEnabled()
{
    return ShouldStartPlugin() && OSGetEnvironmentLong(kEnabledKey) != 0;
}

void SetEnabled(bool on)
{
    if (ShouldStartPlugin()) {
        if ((OSGetEnvironmentLong(kEnabledKey) != 0) != on)
            OSSetEnvironmentInt(kEnabledKey, on ? 1 : 0);
    } else if (on) {
        OSSetEnvironmentInt(kEnabledKey, 1);  // it counts once the policy lets go
    }
}

bool IsIndexingEncrypted()
{
    return IsOn(bIniIndexEncrypted);
}

void SetIndexingEncrypted(bool on)
{
    SetSwitch(bIniIndexEncrypted, on);
}

bool IsIndexingDrafts()
{
    return IsOn(bIniIndexDrafts);
}

void SetIndexingDrafts(bool on)
{
    SetSwitch(bIniIndexDrafts, on);
}

bool IsIndexingChats()
{
    return IsOn(bIniIndexChats);
}

void SetIndexingChats(bool on)
{
    SetSwitch(bIniIndexChats, on);
}

bool IsIndexingDiscussion()
{
    return IsOn(bIniIndexDiscussion);
}

void SetIndexingDiscussion(bool on)
{
    SetSwitch(bIniIndexDiscussion, on);
}

bool IsIndexingHistory()
{
    return IsOn(bIniIndexHistory);
}

void SetIndexingHistory(bool on)
{
    SetSwitch(bIniIndexHistory, on);
}

bool HasInstallInstructions()
{
    return IsOn(bIniInstallInstruct);
}

void SetInstallInstructions(bool on)
{
    SetSwitch(bIniInstallInstruct, on);
}

bool CanIndexRemote()
{
    return IsOn(bIniIndexRemote);
}

bool IsDeletingNotes()
{
    return IsOn(bIniDelete);
}

bool IsIndexingAllNotes()
{
    return IsOn(bIniIndexAllNotes);
}

bool ComputeOK()
{
    return IsOn(bIniComputeOk);
}

bool ShouldSkipLegal()
{
    return IsOn(bIniSkipLegal);
}

bool IsBuildForInhouse()
{
    return Read(bIniInhouse) != 0;
}

bool GetDataFieldsSearch(char* out)
{
    const std::lock_guard guard(dataFieldsLock);
    std::memcpy(out, szDataFields, std::strlen(szDataFields) + 1);
    return out[0] != '\0';
}

bool DoesGoogleSupport(uint32_t mask)
{
    return (mask & kNoteKindMail) != 0 || (mask & Read(dwGoogleSupport)) != 0;
}

void SetGoogleSupport(uint32_t mask, bool on)
{
    if (DoesGoogleSupport(mask) == on)
        return;  // with mail among the bits the answer is always yes: only switching off gets past here
    if (on)
        dwGoogleSupport.fetch_or(mask, std::memory_order_relaxed);
    else
        dwGoogleSupport.fetch_and(~mask, std::memory_order_relaxed);
}

uint16_t GetGoogleStatus()
{
    EnsureLoaded();
    return kStatusReady;
}

uint32_t GetIndexingFreq()
{
    EnsureLoaded();
    return Read(dwIniFreq);
}

void SetIndexingFreq(uint32_t minutes)
{
    EnsureLoaded();
    const uint32_t fitting = FreqFromLong(long{minutes});
    if (fitting != Read(dwIniFreq))
        OSSetEnvironmentInt(kFreqKey, static_cast<int>(fitting));
    Write(dwIniFreq, fitting);
}

uint32_t GetIndexingWaitTime()
{
    EnsureLoaded();
    return Read(dwIniWaitTime);
}

bool IsIdleIndexing()
{
    return IsOn(bIniOnIdle);
}

void SetIdleIndexing(bool on)
{
    SetSwitch(bIniOnIdle, on);
}

void IdleIncrement()
{
    dwIdleCount.fetch_add(1, std::memory_order_relaxed);
}

bool ShouldIndexOnIdle()
{
    if (!IsIdleIndexing())
        return true;
    if (Read(dwIdleCount) < kIdleTicks)
        return false;
    Write(dwIdleCount, uint32_t{0});
    return true;
}

bool ShouldStop()
{
    return bShutDownThread.load(std::memory_order_relaxed) != 0 || AddInShouldTerminate();
}

bool IsDebug()
{
    return IsOn(bIniDebugLots) || IsOn(bIniDebug);
}

bool IsDebugLots()
{
    return IsOn(bIniDebugLots);
}

uint32_t GetQueryCookie()
{
    EnsureLoaded();
    return Read(dwQueryCookie);
}

void SetQueryCookie(uint32_t cookie)
{
    EnsureLoaded();
    if (cookie == 0)
        OSSetEnvironmentVariable(kCookieKey, "");
    else if (cookie != Read(dwQueryCookie))
        OSSetEnvironmentInt(kCookieKey, static_cast<int>(cookie));
    Write(dwQueryCookie, cookie);
}

uint32_t JustRegistered()
{
    return Read(bJustRegistered);
}

void SetJustRegistered(uint32_t on)
{
    Write(bJustRegistered, on);
}

int GetHistoryIndex()
{
    return kHistorySlot;
}
