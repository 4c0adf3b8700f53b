// client/store/environment.cpp: the variables of the client's ini file.
// A read costs one stat while the file stays the same.  A write reads the file anew under a lock that all
// processes take, and replaces it whole: no writer undoes another's change, no reader sees half a file.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <mutex>
#include <string>

#include "client/store/charset.h"
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

std::mutex environmentMutex;  // guards the two below; both are written in this file only
Cache cache;
VariableMap overrides;

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

// Held by whichever process changes the file.  A file of its own: the ini file itself is replaced.
Descriptor LockForWriting(const std::string& path)
{
    Descriptor lock(open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    while (lock.IsOpen() && flock(lock.Get(), LOCK_EX) != 0) {
        if (errno != EINTR)
            return Descriptor();
    }
    return lock;
}

bool ChangeFile(const std::string& path, const std::function<bool(IniText*)>& change)
{
    const Descriptor lock = LockForWriting(path);
    std::string bytes;
    if (!lock.IsOpen() || !ReadFile(path, &bytes))
        return false;
    IniText ini(bytes);
    if (!change(&ini)) {
        errno = EINVAL;
        return false;
    }
    const std::string text = ini.Text();
    return text == bytes || ReplaceFile(path, text);
}

bool Change(const std::function<bool(IniText*)>& change)
{
    const std::string path = CurrentPlaces().ini;
    bool done;
    {
        const std::lock_guard lock(environmentMutex);
        done = ChangeFile(path, change);
        cache.settled = false;
    }
    if (!done)
        Log("the settings file " + path + " could not be written: " + std::strerror(errno));
    return done;
}

}  // namespace

bool GetVariable(const std::string& name, std::string* value)
{
    const std::lock_guard lock(environmentMutex);
    const auto overridden = overrides.find(name);
    if (overridden != overrides.end()) {
        *value = overridden->second;
        return true;
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
    return Change([&](IniText* ini) { return ini->Set(kSection, name, value); });
}

bool RemoveVariable(const std::string& name)
{
    return Change([&](IniText* ini) {
        ini->Remove(kSection, name);
        return true;
    });
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

// A setting that cannot be written is in the log; the program goes on with what it has.
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
