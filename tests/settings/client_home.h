// tests/settings/client_home.h: a client home of the test's own, and settings that are not loaded yet.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

#include "client/store/host.h"
#include "settings/settings.h"
#include "tests/support/temporary_directory.h"

// As when the process starts: nothing is loaded, everything has its default.
inline void ForgetSettings()
{
    for (std::atomic<uint8_t>* off : {&bIniInit, &bAdminLock, &bAdminNoUI, &bAdminOverride, &bIniDebug, &bIniDebugLots,
                                      &bIniIndexEncrypted, &bIniInstallInstruct, &bIniIndexRemote, &bIniIndexDrafts,
                                      &bIniOnIdle, &bIniIndexDiscussion, &bIniSkipLegal, &bIniInhouse, &bIniComputeOk})
        *off = 0;
    for (std::atomic<uint8_t>* on : {&bIniIndexChats, &bIniDelete, &bIniIndexHistory, &bIniIndexAllNotes})
        *on = 1;
    dwIniFreq = 5;
    dwIniWaitTime = 20;
    dwQueryCookie = 0;
    bJustRegistered = 0;
    dwGoogleSupport = kNoteKindsDefault;
    dwIdleCount = 0;
    szDataFields[0] = '\0';
}

class ClientHome : public testing::Test {
protected:
    ClientHome()
    {
        std::string error;
        EXPECT_TRUE(pavex::StartHost({.ini = home_ / "pavex.ini",
                                      .policy = home_ / "policy.ini",
                                      .data = home_ / "data",
                                      .caches = home_ / "caches",
                                      .log = home_ / "log/pavex.log"},
                                     &error))
            << error;
        ForgetSettings();
    }

    // The ini file becomes these lines of its section.
    void Ini(const std::string& lines) { WriteWholeFile(home_ / "pavex.ini", "[Pavex]\n" + lines); }

    // The stored text of a variable; none when it is absent.
    static std::optional<std::string> Stored(const std::string& name)
    {
        std::string value;
        return pavex::GetVariable(name, &value) ? std::optional(value) : std::nullopt;
    }

    TemporaryDirectory home_;
};
