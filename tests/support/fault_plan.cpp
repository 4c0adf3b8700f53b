// tests/support/fault_plan.cpp: the calls that can be made to fail, one row each.
// The build reads the names in the first column, so that a row is all it takes to add a call.
#include "tests/support/fault_plan.h"

#include <fcntl.h>
#include <signal.h>
#include <sqlite3.h>

#include <atomic>
#include <cstdarg>
#include <cstring>

#include "platform/foundation.h"
#include "platform/posix.h"

namespace {

struct Plan {
    int failing = 0;  // 0: disarmed
    int seen = 0;
    const char* only = nullptr;
    STATUS status = 0;
    const char* firedAt = "";
};
thread_local Plan plan;

// Whether the call must fail now.
bool Faulty(const char* name)
{
    if (plan.only != nullptr)
        return std::strcmp(plan.only, name) == 0;
    if (plan.failing == 0 || ++plan.seen != plan.failing)
        return false;
    plan.firedAt = name;
    return true;
}

std::atomic<int> dieAt{0};
std::atomic<int> changes{0};

void CountChange()
{
    const int change = ++changes;
    if (dieAt != 0 && change == dieAt)
        raise(SIGKILL);
}

bool ChangesDatabase(sqlite3_stmt* statement)
{
    const char* const sql = sqlite3_sql(statement);
    return sqlite3_stmt_readonly(statement) == 0 || (sql != nullptr && std::strncmp(sql, "COMMIT", 6) == 0);
}

}  // namespace

FaultPlan::FaultPlan(int failing, STATUS status)
{
    plan = {failing, 0, nullptr, status, ""};
}

FaultPlan::~FaultPlan()
{
    plan = {};
}

bool FaultPlan::Fired() const
{
    return plan.seen >= plan.failing;
}

const char* FaultPlan::Name() const
{
    return plan.firedAt;
}

NamedFault::NamedFault(const char* name, STATUS status)
{
    plan = {0, 0, name, status, ""};
}

NamedFault::~NamedFault()
{
    plan = {};
}

void DieAtChange(int change)
{
    changes = 0;
    dieAt = change;
}

int ChangesSoFar()
{
    return changes;
}

extern "C" {

#define FAULTY_VALUE(name, type, parameters, arguments, failure)                                                       \
    type __real_##name parameters;                                                                                     \
    type __wrap_##name parameters;                                                                                     \
    type __wrap_##name parameters                                                                                      \
    {                                                                                                                  \
        if (Faulty(#name))                                                                                             \
            return failure;                                                                                            \
        return __real_##name arguments;                                                                                \
    }
#define FAULTY_STATUS(name, parameters, arguments) FAULTY_VALUE(name, STATUS, parameters, arguments, plan.status)
#define FAULTY_CHANGE(name, type, parameters, arguments, failure)                                                      \
    type __real_##name parameters;                                                                                     \
    type __wrap_##name parameters;                                                                                     \
    type __wrap_##name parameters                                                                                      \
    {                                                                                                                  \
        CountChange();                                                                                                 \
        if (Faulty(#name))                                                                                             \
            return failure;                                                                                            \
        return __real_##name arguments;                                                                                \
    }
// A statement that only reads cannot leave anything half done.
#define FAULTY_COMMIT(name, type, parameters, arguments, failure)                                                      \
    type __real_##name parameters;                                                                                     \
    type __wrap_##name parameters;                                                                                     \
    type __wrap_##name parameters                                                                                      \
    {                                                                                                                  \
        if (ChangesDatabase arguments)                                                                                 \
            CountChange();                                                                                             \
        if (Faulty(#name))                                                                                             \
            return failure;                                                                                            \
        return __real_##name arguments;                                                                                \
    }

// clang-format off
FAULTY_STATUS(OSCreateThread, (void (*e)(void*), DWORD s, void* a, DWORD* t), (e, s, a, t))
FAULTY_STATUS(PavexInitThread, (void), ())
FAULTY_VALUE(OSGetEnvironmentString, bool, (const char* n, char* v, WORD s), (n, v, s), false)
FAULTY_VALUE(OSGetDataDirectory, WORD, (char* p), (p), (*p = '\0', WORD{0}))
FAULTY_STATUS(SECKFMUserInfo, (WORD f, char* n, void* r), (f, n, r))
FAULTY_STATUS(NAMEGetPolicy, (const char* u, DWORD a, DWORD b, const char* v, DWORD c, DWORD d, const char* p, DWORD e, DWORD f, NOTEHANDLE* n), (u, a, b, v, c, d, p, e, f, n))
FAULTY_STATUS(VLTDbOpen, (const char* p, DBHANDLE* d), (p, d))
FAULTY_STATUS(VLTDbModeGet, (DBHANDLE d, WORD* m), (d, m))
FAULTY_STATUS(VLTDbModifiedTime, (DBHANDLE d, TIMEDATE* a, TIMEDATE* b), (d, a, b))
FAULTY_STATUS(VLTDbReplicaInfoGet, (DBHANDLE d, DBREPLICAINFO* i), (d, i))
FAULTY_STATUS(VLTDbGetModifiedNoteTable, (DBHANDLE d, WORD c, TIMEDATE s, TIMEDATE* u, IDTABLE* t), (d, c, s, u, t))
FAULTY_STATUS(VLTDbGetUnreadNoteTable, (DBHANDLE d, const char* n, WORD l, DWORD f, IDTABLE* t), (d, n, l, f, t))
FAULTY_STATUS(VLTDbGetNoteInfo, (DBHANDLE d, NOTEID n, ORIGINATORID* o, TIMEDATE* m, WORD* c), (d, n, o, m, c))
FAULTY_STATUS(VLTDbInfoGet, (DBHANDLE d, char* i), (d, i))
FAULTY_STATUS(IDEnumerate, (IDTABLE t, STATUS (*c)(void*, NOTEID), void* x), (t, c, x))
FAULTY_STATUS(IDXFindDesignNote, (DBHANDLE d, const char* n, WORD c, NOTEID* i), (d, n, c, i))
FAULTY_STATUS(VLTNoteOpen, (DBHANDLE d, NOTEID i, WORD f, NOTEHANDLE* n), (d, i, f, n))
FAULTY_STATUS(VLTNoteCreate, (DBHANDLE d, DWORD f, NOTEHANDLE* n), (d, f, n))
FAULTY_STATUS(VLTNoteDecrypt, (NOTEHANDLE n, WORD f, void* r), (n, f, r))
FAULTY_STATUS(VLTItemInfo, (NOTEHANDLE n, const char* m, WORD l, BLOCKID* i, WORD* t, BLOCKID* v, DWORD* b), (n, m, l, i, t, v, b))
FAULTY_VALUE(OSLockBlock, void*, (BLOCKID b), (b), nullptr)
FAULTY_VALUE(VLTItemGetText, WORD, (NOTEHANDLE n, const char* m, char* t, WORD s), (n, m, t, s), (*t = '\0', WORD{0}))
FAULTY_VALUE(VLTItemConvertToText, WORD, (NOTEHANDLE n, const char* m, char* t, WORD s, char p), (n, m, t, s, p), (*t = '\0', WORD{0}))
FAULTY_VALUE(VLTItemGetTextListEntry, WORD, (NOTEHANDLE n, const char* m, WORD i, char* t, WORD s), (n, m, i, t, s), (*t = '\0', WORD{0}))
FAULTY_VALUE(VLTItemGetTime, bool, (NOTEHANDLE n, const char* m, TIMEDATE* t), (n, m, t), false)
FAULTY_STATUS(VLTItemScan, (NOTEHANDLE n, ItemScanCallback c, void* x), (n, c, x))
FAULTY_STATUS(MailGetMessageItem, (NOTEHANDLE n, WORD i, char* t, WORD s, WORD* l), (n, i, t, s, l))
FAULTY_STATUS(MailGetMessageItemTimeDate, (NOTEHANDLE n, WORD i, TIMEDATE* t), (n, i, t))
FAULTY_STATUS(MailGetMessageBodyText, (NOTEHANDLE n, const char* i, const char* e, WORD l, bool c, const char* f, DWORD* s), (n, i, e, l, c, f, s))
FAULTY_STATUS(CompoundTextCreate, (NOTEHANDLE n, const char* i, COMPOUNDHANDLE* c), (n, i, c))
FAULTY_STATUS(CompoundTextDefineStyle, (COMPOUNDHANDLE c, const char* n, const void* s, DWORD* i), (c, n, s, i))
FAULTY_STATUS(CompoundTextAddTextExt, (COMPOUNDHANDLE c, DWORD s, DWORD f, const char* t, DWORD l, const char* d, WORD e, void* r), (c, s, f, t, l, d, e, r))
FAULTY_STATUS(CompoundTextAddParagraphExt, (COMPOUNDHANDLE c, DWORD s, DWORD f, const char* t, DWORD l, void* r), (c, s, f, t, l, r))
FAULTY_STATUS(CompoundTextAddRenderedNote, (COMPOUNDHANDLE c, NOTEHANDLE n), (c, n))
FAULTY_STATUS(CompoundTextClose, (COMPOUNDHANDLE c), (c))
FAULTY_STATUS(EnumCompositeBuffer, (BLOCKID v, DWORD b, RecordCallback c, void* x), (v, b, c, x))
FAULTY_STATUS(ODSReadMemory, (const char** s, const char* e, WORD t, void* o, WORD i), (s, e, t, o, i))
FAULTY_STATUS(VLTComputeStart, (const void* v, DWORD b, COMPUTEHANDLE* c), (v, b, c))
FAULTY_STATUS(VLTComputeEvaluate, (COMPUTEHANDLE c, NOTEHANDLE n, const void** r, DWORD* b), (c, n, r, b))
FAULTY_STATUS(ConvertTIMEDATEToText, (const void* i, const void* f, const TIMEDATE* t, char* x, WORD s, WORD* l), (i, f, t, x, s, l))
FAULTY_STATUS(ConvertTextToTIMEDATE, (const void* i, const void* f, char** x, WORD m, TIMEDATE* t), (i, f, x, m, t))
FAULTY_STATUS(ConvertFLOATToText, (const void* i, const void* f, const double* n, char* x, WORD s, WORD* l), (i, f, n, x, s, l))
FAULTY_VALUE(OSTranslate, WORD, (WORD m, const void* s, WORD l, void* t, WORD z), (m, s, l, t, z), 0)
FAULTY_STATUS(DNAbbreviate, (DWORD f, void* r, const char* n, char* o, WORD s, WORD* l), (f, r, n, o, s, l))
FAULTY_STATUS(OSPathNetParse, (const char* p, char* r, char* o, char* s), (p, r, o, s))
FAULTY_STATUS(OSCreateTempFile, (char* n, WORD s, DWORD* f), (n, s, f))
FAULTY_STATUS(OSFileDelete, (const char* n), (n))
FAULTY_VALUE(FSFindFolder, OSErr, (FSVolumeRefNum v, OSType t, unsigned char c, FSRef* f), (v, t, c, f), -43)
FAULTY_VALUE(FSRefMakePath, OSStatus, (const FSRef* r, UInt8* p, UInt32 s), (r, p, s), -43)
FAULTY_VALUE(IOPSCopyPowerSourcesInfo, CFTypeRef, (void), (), nullptr)
FAULTY_VALUE(IOPSCopyPowerSourcesList, CFArrayRef, (CFTypeRef b), (b), nullptr)
FAULTY_VALUE(IOPSGetPowerSourceDescription, CFDictionaryRef, (CFTypeRef b, CFTypeRef p), (b, p), nullptr)
FAULTY_VALUE(CFPropertyListCreateXMLData, CFDataRef, (CFAllocatorRef a, CFPropertyListRef p), (a, p), nullptr)
FAULTY_VALUE(CFURLWriteDataAndPropertiesToResource, Boolean, (CFURLRef u, CFDataRef d, CFDictionaryRef p, SInt32* e), (u, d, p, e), false)
FAULTY_VALUE(CFURLGetFSRef, Boolean, (CFURLRef u, FSRef* r), (u, r), false)
FAULTY_VALUE(CFURLGetFileSystemRepresentation, Boolean, (CFURLRef u, Boolean r, UInt8* b, CFIndex m), (u, r, b, m), (*b = 0, Boolean{false}))
FAULTY_VALUE(CFURLCreateCopyAppendingPathComponent, CFURLRef, (CFAllocatorRef a, CFURLRef u, CFStringRef c, Boolean d), (a, u, c, d), nullptr)
FAULTY_VALUE(CFURLCreateCopyAppendingPathExtension, CFURLRef, (CFAllocatorRef a, CFURLRef u, CFStringRef e), (a, u, e), nullptr)
FAULTY_VALUE(CFURLCreateCopyDeletingLastPathComponent, CFURLRef, (CFAllocatorRef a, CFURLRef u), (a, u), nullptr)
FAULTY_VALUE(CFBundleCopyLocalizedString, CFStringRef, (CFBundleRef b, CFStringRef k, CFStringRef v, CFStringRef t), (b, k, v, t), nullptr)
FAULTY_VALUE(fopen, FILE*, (const char* p, const char* m), (p, m), nullptr)
FAULTY_VALUE(system, int, (const char* c), (c), -1)
FAULTY_CHANGE(mkdir, int, (const char* p, mode_t m), (p, m), -1)
FAULTY_CHANGE(rename, int, (const char* a, const char* b), (a, b), -1)
FAULTY_CHANGE(remove, int, (const char* p), (p), -1)
FAULTY_CHANGE(unlink, int, (const char* p), (p), -1)
FAULTY_CHANGE(write, ssize_t, (int f, const void* b, size_t n), (f, b, n), -1)
FAULTY_CHANGE(ftruncate, int, (int f, off_t n), (f, n), -1)
FAULTY_CHANGE(mkstemp, int, (char* p), (p), -1)
FAULTY_COMMIT(sqlite3_step, int, (sqlite3_stmt* s), (s), SQLITE_IOERR)
// clang-format on

}  // extern "C"
