// client/store/host.cpp: what the client's program tells the store library about itself.
#include "client/store/host.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <thread>

#include "client/foundation/host.h"
#include "client/store/charset.h"
#include "client/store/handle_table.h"
#include "platform/foundation.h"

namespace pavex {

namespace {

struct ReleaseBundle {
    void operator()(CFBundleRef bundle) const { CFRelease(bundle); }
};

// Written by StartHost and SetAddInBundle, which the program calls before it starts threads.
Places places;
std::thread::id mainThread;
std::unique_ptr<__CFBundle, ReleaseBundle> addInBundle;

constexpr size_t kPathBytes = 256;  // of the buffer that the add-in has for the data directory

std::atomic<bool> terminating{false};  // written by RequestTermination

std::string Environment(const char* name)
{
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

struct Account {
    std::string login;
    std::string fullName;
    std::string home;
};

// The account's full name: the part of the comment field before the first comma; '&' stands for the login
// name with a capital.
std::string FullName(const std::string& comment, const std::string& login)
{
    std::string name;
    for (const char c : comment.substr(0, comment.find(','))) {
        if (c != '&' || login.empty()) {
            name += c;
            continue;
        }
        name += static_cast<char>(std::toupper(static_cast<unsigned char>(login.front())));
        name += login.substr(1);
    }
    return name;
}

Account ReadAccount()
{
    char buffer[4096];
    passwd entry{};
    passwd* found = nullptr;
    Account account;
    if (getpwuid_r(getuid(), &entry, buffer, sizeof buffer, &found) == 0 && found != nullptr) {
        account.login = found->pw_name;
        account.fullName = FullName(found->pw_gecos == nullptr ? "" : found->pw_gecos, account.login);
        account.home = found->pw_dir;
    }
    return account;
}

// $variable when it is an absolute path, as the XDG rules have it, else the default below the home folder.
std::string XdgFolder(const char* variable, const char* defaultBelowHome)
{
    std::string folder = Environment(variable);
    if (folder.starts_with('/'))
        return folder;
    const std::string home = Environment("HOME");
    return (home.empty() ? ReadAccount().home : home) + defaultBelowHome;
}

std::string FolderOf(const std::string& path)
{
    return path.substr(0, path.rfind('/'));
}

// With its parents, mode 0700 for those that are missing.  False, with errno, when that fails.
bool MakeFolder(const std::string& path)
{
    for (size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        const std::string part = path.substr(0, slash);
        if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) {
            const int error = errno;
            struct stat status {};
            if (stat(part.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) {
                errno = error;
                return false;
            }
        }
        if (slash == std::string::npos)
            break;
    }
    struct stat status {};
    if (stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
        return true;
    errno = ENOTDIR;
    return false;
}

// More than one slash at the beginning would name a server.
std::string Absolute(const std::string& path)
{
    if (path.starts_with('/'))
        return path.substr(path.find_first_not_of('/') == path.npos ? path.size() - 1
                                                                    : path.find_first_not_of('/') - 1);
    std::unique_ptr<char, decltype(&std::free)> current(getcwd(nullptr, 0), &std::free);
    return current == nullptr ? path : std::string(current.get()) + "/" + path;
}

}  // namespace

Places FindPlaces(const std::string& homeOption)
{
    std::string home = homeOption.empty() ? Environment("PAVEX_HOME") : homeOption;
    if (!home.empty()) {
        home = Absolute(home);
        while (home.size() > 1 && home.ends_with('/'))
            home.pop_back();
        return {home + "/pavex.ini", home + "/policy.ini",    home + "/data",
                home + "/caches",    home + "/log/pavex.log", home};
    }
    return {XdgFolder("XDG_CONFIG_HOME", "/.config") + "/pavex/pavex.ini", "/etc/pavex/policy.ini",
            XdgFolder("XDG_DATA_HOME", "/.local/share") + "/pavex", XdgFolder("XDG_CACHE_HOME", "/.cache"),
            XdgFolder("XDG_STATE_HOME", "/.local/state") + "/pavex/pavex.log"};
}

bool StartHost(const Places& newPlaces, std::string* error)
{
    if (const size_t bytes = ScsFromUtf8(newPlaces.data).size(); bytes >= kPathBytes) {
        *error = "cannot use the data directory " + newPlaces.data + ": its path has " + std::to_string(bytes) +
                 " bytes, more than " + std::to_string(kPathBytes - 1);
        return false;
    }
    const std::string folders[] = {FolderOf(newPlaces.ini), newPlaces.data, newPlaces.caches, FolderOf(newPlaces.log)};
    for (const std::string& folder : folders) {
        if (!folder.empty() && !MakeFolder(folder)) {
            *error = "cannot make the folder " + folder + ": " + std::strerror(errno);
            return false;
        }
    }
    places = newPlaces;
    mainThread = std::this_thread::get_id();
    SetCachesFolder(places.caches);
    SweepTemporaryFiles();
    return true;
}

const Places& CurrentPlaces()
{
    return places;
}

void SetAddInBundle(const std::string& bundleFolder)
{
    addInBundle.reset(bundleFolder.empty() ? nullptr : CreateBundle(bundleFolder));
    SetStringsDiagnostics([](const std::string& file, int line, const std::string& reason) {
        Log("the texts in " + file + (line > 0 ? ", line " + std::to_string(line) : std::string()) + ": " + reason);
    });
}

std::string UserName()
{
    std::string name;
    if (GetVariable("UserName", &name) && !name.empty())
        return name;
    const Account account = ReadAccount();
    if (!account.fullName.empty())
        return account.fullName;
    return account.login.empty() ? Environment("USER") : account.login;
}

void RequestTermination(bool terminate)
{
    terminating = terminate;
}

int OpenDatabasesOfThread()
{
    return openDatabasesOfThread;
}

int OpenHandles()
{
    return openHandleCount;
}

}  // namespace pavex

using namespace pavex;

bool OSIsClientMainThread(void)
{
    return std::this_thread::get_id() == mainThread;
}

bool AddInShouldTerminate(void)
{
    return terminating;
}

WORD OSGetDataDirectory(char* path)
{
    const std::string scs = ScsFromUtf8(CurrentPlaces().data);
    const size_t length = ScsPrefix(scs, kPathBytes - 1);
    std::memcpy(path, scs.data(), length);
    path[length] = 0;
    return static_cast<WORD>(length);
}

CFBundleRef GetPavexBundle(void)
{
    return addInBundle.get();
}
