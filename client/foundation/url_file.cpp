// client/foundation/url_file.cpp: writes data to the file of a URL.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>

#include "client/foundation/collections.h"
#include "client/foundation/url.h"

using namespace pavex::cf;

namespace {

int OpenForWriting(const std::string& path)
{
    int file = -1;
    do
        file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    while (file < 0 && errno == EINTR);
    return file;
}

bool WriteAll(int file, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

// In place, and not synced: thousands of metafiles are written in a pass, each can be made again from its
// database, and waiting for the disk each time would cost more than all the rest.
bool WriteFile(const std::string& path, std::string_view bytes)
{
    const int file = OpenForWriting(path);
    if (file < 0)
        return false;
    const bool written = WriteAll(file, bytes);
    // Some file systems report a full disk only here.  An interrupted close has closed the file.
    const bool closed = close(file) == 0 || errno == EINTR;
    return written && closed;
}

}  // namespace

extern "C" Boolean CFURLWriteDataAndPropertiesToResource(CFURLRef url, CFDataRef dataToWrite, CFDictionaryRef,
                                                         SInt32* errorCode)
{
    bool written = true;
    if (dataToWrite) {
        const Url& target = As<Url>(url);
        const std::string path = target.ResolvedPath();
        written =
            target.IsDirectory() ? mkdir(path.c_str(), 0777) == 0 : WriteFile(path, As<Data>(dataToWrite).Bytes());
    }
    if (errorCode)
        *errorCode = written ? 0 : static_cast<SInt32>(kCFURLUnknownError);
    return written;
}
