// client/store/describe_status.cpp: what a status means, in words that follow a file's name and a colon.
#include <string>

#include "client/store/database.h"
#include "platform/store.h"

namespace pavex {

namespace {

struct Description {
    STATUS status;
    const char* text;
};

constexpr Description kDescriptions[] = {
    {kStatusOk, "no error"},
    {kStatusNoSuchFile, "no such file or folder"},
    {kStatusCancelled, "cancelled"},
    {kStatusNotADatabase, "not a database, or damaged beyond opening"},
    {kStatusNewerFormat, "written by a newer version of this program"},
    {kStatusLocked, "locked by another program"},
    {kStatusReadOnly, "cannot be written: it is read-only"},
    {kStatusDiskFull, "the disk is full"},
    {kStatusDamaged, "damaged: this part cannot be read"},
    {kStatusNoAccess, "cannot be opened: permission denied"},
    {kStatusModeUnsuitable, "not a database of notes"},
    {kStatusItemNotFound, "no such item"},
    {kStatusNoteDeleted, "deleted"},
    {kStatusNoSuchNote, "no such note"},
    {kStatusNothingModified, "nothing was modified"},
    {kStatusBadHandle, "no such open object"},
    {kStatusBadText, "text that cannot be understood"},
    {kStatusNoMemory, "not enough memory"},
    {kStatusNotFound, "not found"},
    {kStatusFormulaFailed, "the formula failed"},
    {kStatusSealed, "sealed, and there is no key for it"},
    {kStatusIoError, "input or output failed"},
    {kStatusStopped, "stopped on request"},
    {kStatusRemoteNotAllowed, "on a server, which is not allowed"},
    {kStatusRemoteUnreachable, "on a server that cannot be reached"},
    {kStatusRemovalFailed, "a removal failed"},
};

}  // namespace

std::string DescribeStatus(STATUS status)
{
    for (const Description& row : kDescriptions)
        if (row.status == status)
            return row.text;
    return "status " + std::to_string(status);
}

}  // namespace pavex
