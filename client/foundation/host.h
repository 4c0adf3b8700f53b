// client/foundation/host.h: what the client's program tells the foundation library about its surroundings.
// Everything here may be called on any thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/foundation.h"

namespace pavex {

// The user's caches folder, native path; empty: there is none, and FSFindFolder answers fnfErr.
void SetCachesFolder(const std::string& path);

// The folder that stands for the kernel's power-supply class; empty: /sys/class/power_supply.
void SetPowerSupplyRoot(const std::string& path);
// True when the first power source that is present is being drained; false when that cannot be told.
bool RunsOnBattery();

// The user's languages, best first, as locale names ("de_AT.UTF-8") or language tags ("zh-Hans").
// Empty: those of the environment, read now: the LANGUAGE list, then LC_ALL, LC_MESSAGES or LANG.
void SetUserLanguages(const std::vector<std::string>& languages);

// A bundle whose localized texts are in folder/LANG.lproj/TABLE.strings.  Owned by the caller, ended with
// CFRelease.  Tables are read when they are first asked for and kept while the bundle lives.
CFBundleRef CreateBundle(const std::string& folder);

// Told once for each strings table with a fault, after it was read: the entries before the fault count.
// line: from 1; 0 when the file could not be read at all.  Called on the thread that asked for a text,
// with no lock held.
using StringsDiagnostics = std::function<void(const std::string& file, int line, const std::string& reason)>;
void SetStringsDiagnostics(StringsDiagnostics diagnostics);

// Objects that are alive, constants not counted; for leak tests.
long LiveObjects();

}  // namespace pavex
