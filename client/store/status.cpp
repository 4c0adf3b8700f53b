// client/store/status.cpp: statuses from the operating system's errors.
#include "client/store/status.h"

#include <cerrno>

namespace pavex {

namespace {

struct ErrnoRow {
    int error;
    STATUS status;
};

constexpr ErrnoRow kErrnos[] = {
    {ENOENT, kStatusNoSuchFile}, {ENOTDIR, kStatusNoSuchFile}, {EACCES, kStatusNoAccess},
    {EPERM, kStatusNoAccess},    {EROFS, kStatusReadOnly},     {ENOSPC, kStatusDiskFull},
    {EDQUOT, kStatusDiskFull},   {EFBIG, kStatusDiskFull},     {ENOMEM, kStatusNoMemory},
};

}  // namespace

STATUS StatusOfErrno(int error)
{
    for (const ErrnoRow& row : kErrnos) {
        if (row.error == error)
            return row.status;
    }
    return kStatusIoError;
}

}  // namespace pavex
