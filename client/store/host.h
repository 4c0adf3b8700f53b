// client/store/host.h: what the client's program tells the store library about itself.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/store.h"

namespace pavex {

// Where things are; native paths.
struct Places {
    std::string ini;        // pavex.ini
    std::string policy;     // policy.ini
    std::string data;       // data directory
    std::string caches;     // the user's caches folder; empty: none
    std::string log;        // pavex.log
    std::string home = {};  // the folder that all of them are below; empty: the XDG folders
};
// homeOption: --home, else $PAVEX_HOME, else the XDG folders.
Places FindPlaces(const std::string& homeOption);
// Puts the places to use (folders are made, mode 0700) and makes the calling thread the main one.
// False, with *error saying what, which file and why, when a folder cannot be made or the add-in cannot be
// told where the data directory is: its buffer takes 255 bytes.
bool StartHost(const Places& places, std::string* error);
const Places& CurrentPlaces();
// Removes the user's temporary files of processes that were killed.
void SweepTemporaryFiles();

// bundleFolder: the folder with the LANG.lproj folders of the add-in; empty: none.
void SetAddInBundle(const std::string& bundleFolder);
// The user's name, UTF-8: the ini variable "UserName", else the account's full name, else its login name.
std::string UserName();

// AddInShouldTerminate answers true from now on.
void RequestTermination(bool terminate = true);
// Threads made with OSCreateThread and not joined yet.
int ThreadsMade();
// Waits until every thread made with OSCreateThread has ended.
void JoinThreads();
// Databases that the calling thread has open through VLTDbOpen.
int OpenDatabasesOfThread();
// Handles (databases, notes, tables, computes, compound texts) that are open in the process; for tests.
int OpenHandles();

// Variables that are read in place of the ini file's, in this process only; written ones go to the file.
void OverrideVariable(const std::string& name, const std::string& value);
void ClearOverrides();

// The environment for the client's own code; UTF-8.
bool GetVariable(const std::string& name, std::string* value);
bool SetVariable(const std::string& name, const std::string& value);  // false: the file could not be written
bool RemoveVariable(const std::string& name);
// While one lives, what its thread sets and removes is kept back, read by every thread as if it were written, and goes
// to the file at the end, all of it in one replacement.  One within another changes nothing; one thread at a time has
// any.  What other threads write meanwhile goes to the file at once, and counts where it came later.
class VariableBatch {
public:
    VariableBatch();
    ~VariableBatch();
    VariableBatch(const VariableBatch&) = delete;
    VariableBatch& operator=(const VariableBatch&) = delete;
};
// Every variable of the file as it is now, without the overrides; names as they are written there.
std::map<std::string, std::string> FileVariables();
// Changes several at once: no reader sees some of them changed and others not, and no other writer comes between
// what `decide` is given (as FileVariables) and the writing of what it answers: new values, nothing for one that
// goes.  `decide` must not read or write variables.  False: the file could not be written.
using VariableChanges = std::map<std::string, std::optional<std::string>>;
bool ChangeVariables(const std::function<VariableChanges(const std::map<std::string, std::string>&)>& decide);
// What the first write that failed failed of, in one line; empty when none did.  Told once.
std::string TakeFailedWrite();
// How long a write waits for another process's, 10 seconds unless set; for tests.
void SetSettingsLockTimeout(int milliseconds);

// Every log entry on its way to the file.  False from the observer keeps it out of the file.
struct LogEntry {
    uint32_t id;
    STATUS status;
    std::string text;                                           // UTF-8, arguments filled in
    std::vector<std::variant<std::string, int64_t>> arguments;  // text UTF-8; times in their text form
};
void SetLogObserver(std::function<bool(const LogEntry&)> observer);
// The client's own entries (id 0).
void Log(const std::string& utf8);

}  // namespace pavex
