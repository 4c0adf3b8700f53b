// tests/client/store/status_test.cpp: statuses from the operating system's errors.
#include "client/store/status.h"

#include <gtest/gtest.h>

#include <cerrno>

TEST(StatusOfErrno, TellsTheReasonsThatUsersCanMend)
{
    const std::pair<int, STATUS> cases[] = {
        {ENOENT, kStatusNoSuchFile}, {ENOSPC, kStatusDiskFull}, {EDQUOT, kStatusDiskFull}, {EROFS, kStatusReadOnly},
        {EACCES, kStatusNoAccess},   {EIO, kStatusIoError},     {0, kStatusIoError}};
    for (const auto& [error, status] : cases)
        EXPECT_EQ(pavex::StatusOfErrno(error), status) << error;
}
