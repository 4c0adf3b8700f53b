// client/store/environment.cpp: the variables of the client's ini file.
// A read costs one stat while the file stays the same.  A write reads the file anew under a lock that all
// processes take, and replaces it whole: no writer undoes another's change, no reader sees half a file.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "client/store/charset.h"
#include "client/store/clock.h"
#include "client/store/descriptor.h"
#include "client/store/host.h"
#include "client/store/ini_file.h"
#include "platform/store.h"

namespace pavex {

namespace {

constexpr const char* kSection = "Pavex";
// A file that was changed so short a time before it was read may have been changed again within the same
// tick of its time stamp.  What was read off it is not kept.
constexpr int64_t kSettledNanoseconds = 50'000'000;

int64_t Nanoseconds(const timespec& time)
{
    return int64_t{time.tv_sec} * 1000000000 + time.tv_nsec;
}

// What tells one state of a file from the next.
struct FileState {
    bool exists = false;
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    int64_t modified = 0;
    int64_t changed = 0;
    bool operator==(const FileState&) const = default;
};

FileState StateOf(const std::string& path)
{
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        return {};
    return {
        true, status.st_dev, status.st_ino, status.st_size, Nanoseconds(status.st_mtim), Nanoseconds(status.st_ctim)};
}

bool IsSettled(const FileState& state)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return Nanoseconds(now) - state.changed > kSettledNanoseconds;
}

struct Cache {
    std::string path;
    FileState state;
    bool settled = false;
    VariableMap variables;
};

// Changes by name; none: removed.
using Changes = std::map<std::string, std::optional<std::string>, NoCaseLess>;

// What a VariableBatch keeps back.
struct KeptBack {
    int batches = 0;  // one within another
    std::thread::id thread{};
    Changes changes{};
};

std::mutex environmentMutex;  // guards the four below; all are written in this file only
Cache cache;
VariableMap overrides;
KeptBack keptBack;
std::string failedWrite;                 // the first since TakeFailedWrite
std::atomic<int> lockTimeoutMs{10'000};  // written by SetSettingsLockTimeout

// False when there is a file and it cannot be read; a file that is not there is an empty one.
bool ReadFile(const std::string& path, std::string* bytes)
{
    bytes->clear();
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen())
        return errno == ENOENT;
    return ReadAll(file.Get(), bytes);
}

// The file's variables as they are now.
const VariableMap& CurrentVariables()
{
    const std::string& path = CurrentPlaces().ini;
    const FileState state = StateOf(path);
    if (cache.settled && cache.path == path && cache.state == state)
        return cache.variables;
    std::string bytes;
    (void)ReadFile(path, &bytes);  // a file that cannot be read has nothing to say: the defaults apply
    // The state from before the reading: a change in between shows at the next read.
    cache = {path, state, IsSettled(state), IniText(bytes).Variables(kSection)};
    return cache.variables;
}

// Held by whichever process changes the file.  A file of its own: the ini file itself is replaced.  Closed,
// with *problem, when it cannot be had.  Waits by the machine's clock: another one may make waits pass quickly.
// A client that is to end does not wait for others to let go.
Descriptor LockForWriting(const std::string& path, std::string* problem)
{
    constexpr uint32_t kRetryMs = 10;
    constexpr uint64_t kLastChanceMs = 300;
    const uint64_t start = SystemClock().TimerMilliseconds();
    Descriptor lock(open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    while (!lock.IsOpen() || flock(lock.Get(), LOCK_EX | LOCK_NB) != 0) {
        const bool held = lock.IsOpen() && (errno == EWOULDBLOCK || errno == EINTR);
        const uint64_t waited = SystemClock().TimerMilliseconds() - start;
        const bool ending = waited >= kLastChanceMs && AddInShouldTerminate() != 0;
        if (!held || ending || waited >= static_cast<uint64_t>(lockTimeoutMs)) {
            *problem = held ? "another program keeps it locked" : std::strerror(errno);
            return Descriptor();
        }
        SystemClock().Delay(kRetryMs);
    }
    return lock;
}

// To replace a file takes no permission of its own: who made it read-only wants it left alone.
bool IsReadOnly(const std::string& path)
{
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

// Why it could not be done; empty when it was.
std::string ChangeFile(const std::string& path, const std::function<bool(IniText*)>& change)
{
    std::string bytes;
    if (!ReadFile(path, &bytes))
        return std::strerror(errno);
    IniText ini(bytes);
    if (!change(&ini))
        return "no line of it can hold that name";
    const std::string text = ini.Text();
    if (text == bytes)
        return {};
    if (IsReadOnly(path))
        return "it is read-only";
    return ReplaceFile(path, text) ? "" : std::strerror(errno);
}

bool Change(const std::function<bool(IniText*)>& change)
{
    const std::string path = CurrentPlaces().ini;
    std::string problem;
    // Before the mutex: whoever only reads does not wait for other processes.
    const Descriptor fileLock = LockForWriting(path, &problem);
    {
        const std::lock_guard lock(environmentMutex);
        if (fileLock.IsOpen())
            problem = ChangeFile(path, change);
        cache.settled = false;
        if (problem.empty())
            return true;
        problem = "the settings file " + path + " could not be written: " + problem;
        if (failedWrite.empty())
            failedWrite = problem;
    }
    Log(problem);
    return false;
}

bool Apply(IniText* ini, const std::string& name, const std::optional<std::string>& value)
{
    if (value)
        return ini->Set(kSection, name, *value);
    ini->Remove(kSection, name);
    return true;
}

// True when the change now waits for the end of its thread's batch.  What another thread kept back before is outdated.
bool KeepBack(const std::string& name, const std::optional<std::string>& value)
{
    const std::lock_guard lock(environmentMutex);
    if (keptBack.batches == 0)
        return false;
    IniText probe("");
    if (keptBack.thread != std::this_thread::get_id() || !Apply(&probe, name, value)) {
        keptBack.changes.erase(name);
        return false;
    }
    keptBack.changes.insert_or_assign(name, value);
    return true;
}

bool ChangeVariable(const std::string& name, const std::optional<std::string>& value)
{
    return KeepBack(name, value) || Change([&](IniText* ini) { return Apply(ini, name, value); });
}

}  // namespace

VariableBatch::VariableBatch()
{
    const std::lock_guard lock(environmentMutex);
    ++keptBack.batches;
    keptBack.thread = std::this_thread::get_id();
}

VariableBatch::~VariableBatch()
{
    {
        const std::lock_guard lock(environmentMutex);
        if (keptBack.batches > 1 || keptBack.changes.empty()) {
            --keptBack.batches;
            return;
        }
    }
    // Under the mutex: what another thread has changed since is no longer among them.  A failure is in the log, and
    // TakeFailedWrite tells.
    (void)Change([](IniText* ini) {
        return std::all_of(keptBack.changes.begin(), keptBack.changes.end(),
                           [ini](const auto& change) { return Apply(ini, change.first, change.second); });
    });
    const std::lock_guard lock(environmentMutex);
    keptBack = {};
}

bool GetVariable(const std::string& name, std::string* value)
{
    const std::lock_guard lock(environmentMutex);
    const auto overridden = overrides.find(name);
    if (overridden != overrides.end()) {
        *value = overridden->second;
        return true;
    }
    if (const auto waiting = keptBack.changes.find(name); waiting != keptBack.changes.end()) {
        *value = waiting->second.value_or("");
        return waiting->second.has_value();
    }
    const VariableMap& variables = CurrentVariables();
    const auto found = variables.find(name);
    if (found == variables.end())
        return false;
    *value = found->second;
    return true;
}

bool SetVariable(const std::string& name, const std::string& value)
{
    return ChangeVariable(name, value);
}

bool RemoveVariable(const std::string& name)
{
    return ChangeVariable(name, std::nullopt);
}

std::map<std::string, std::string> FileVariables()
{
    const std::lock_guard lock(environmentMutex);
    const VariableMap& variables = CurrentVariables();
    return {variables.begin(), variables.end()};
}

bool ChangeVariables(const std::function<VariableChanges(const std::map<std::string, std::string>&)>& decide)
{
    return Change([&](IniText* ini) {
        const VariableMap variables = ini->Variables(kSection);
        for (const auto& [name, value] : decide({variables.begin(), variables.end()})) {
            if (!value)
                ini->Remove(kSection, name);
            else if (!ini->Set(kSection, name, *value))
                return false;
        }
        return true;
    });
}

std::string TakeFailedWrite()
{
    const std::lock_guard lock(environmentMutex);
    return std::exchange(failedWrite, {});
}

void SetSettingsLockTimeout(int milliseconds)
{
    lockTimeoutMs = milliseconds;
}

void OverrideVariable(const std::string& name, const std::string& value)
{
    const std::lock_guard lock(environmentMutex);
    overrides.insert_or_assign(name, value);
}

void ClearOverrides()
{
    const std::lock_guard lock(environmentMutex);
    overrides.clear();
}

}  // namespace pavex

using namespace pavex;

long OSGetEnvironmentLong(const char* name)
{
    std::string value;
    return GetVariable(Utf8FromScs(name), &value) ? std::strtol(value.c_str(), nullptr, 10) : 0;
}

bool OSGetEnvironmentString(const char* name, char* value, WORD size)
{
    std::string utf8;
    const bool exists = GetVariable(Utf8FromScs(name), &utf8);
    if (value != nullptr && size > 0) {
        const std::string scs = ScsFromUtf8(utf8);
        const size_t length = ScsPrefix(scs, size - 1u);
        std::memcpy(value, scs.data(), length);
        value[length] = 0;
    }
    return exists;
}

// A setting that cannot be written is in the log, and TakeFailedWrite tells; the program goes on with what it has.
void OSSetEnvironmentInt(const char* name, int value)
{
    (void)SetVariable(Utf8FromScs(name), std::to_string(value));
}

void OSSetEnvironmentVariable(const char* name, const char* value)
{
    if (value == nullptr)
        (void)RemoveVariable(Utf8FromScs(name));
    else
        (void)SetVariable(Utf8FromScs(name), Utf8FromScs(value));
}
