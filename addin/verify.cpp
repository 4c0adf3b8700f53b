// addin/verify.cpp: whether a database can be indexed, for the pass, the settings and their dialog.
#include "addin/pass.h"
#include "platform/windows.h"
#include "settings/settings.h"
#include "strings/cstring.h"
#include "strings/string_ids.h"
#include "strings/string_resources.h"

namespace {

constexpr size_t kPathPartBytes = 256;
constexpr WORD kModeOrdinary = 1;

struct Verdict {
    STATUS status;
    int message;  // string number of what to tell the user; 0: nothing
};

Verdict OpenFailure(STATUS status)
{
    const bool noDatabase = status == kStatusNoSuchFile || status == kStatusNotADatabase;
    return {status, noDatabase ? kStringNoSuchDatabase : kStringCannotOpenDatabase};
}

Verdict OpenForIndexing(const char* path, DBHANDLE* handle)
{
    DBHANDLE db = 0;
    STATUS status = VLTDbOpen(path, &db);
    if (status != 0)
        return OpenFailure(status);
    WORD mode = 0;
    status = VLTDbModeGet(db, &mode);
    if (status == 0 && (mode & kModeOrdinary) == 0)
        status = kStatusModeUnsuitable;
    if (status == 0 && handle != nullptr)
        *handle = db;
    else
        VLTDbClose(db);  // nothing to keep it for: its own status adds nothing
    return status == 0 ? Verdict{0, 0} : OpenFailure(status);
}

Verdict Verify(const char* path, DBHANDLE* handle)
{
    if (*path == '\0')
        return {kStatusNoSuchFile, kStringNoDatabaseChosen};
    char port[kPathPartBytes] = "";
    char server[kPathPartBytes] = "";
    if (const STATUS status = OSPathNetParse(path, nullptr, port, server); status != 0)
        return {status, kStringNoDatabaseChosen};
    if (*server != '\0' && !CanIndexRemote())
        return {kStatusRemoteNotAllowed, kStringRemoteNotAllowed};
    return OpenForIndexing(path, handle);
}

}  // namespace

STATUS VerifyDatabase(unsigned long window, const char* path, DBHANDLE* handle)
{
    if (handle != nullptr)
        *handle = 0;
    const Verdict verdict = Verify(path, handle);
    if (window != 0 && verdict.message != 0) {
        CString text;
        text.LoadString(verdict.message);
        PlatformMessageBox(window, text, CString(path), kBoxWarning);
    }
    return verdict.status;
}
