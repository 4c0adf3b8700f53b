// client/store/descriptor.cpp: whole files in and out.
#include "client/store/descriptor.h"

#include <fcntl.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>

#include "client/store/leftovers.h"

namespace pavex {

bool WriteAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            return false;
        bytes.remove_prefix(written < 0 ? 0 : static_cast<size_t>(written));
    }
    return true;
}

bool ReadAll(int descriptor, std::string* bytes)
{
    bytes->clear();
    char block[16 * 1024];
    for (;;) {
        const ssize_t count = read(descriptor, block, sizeof block);
        if (count == 0)
            return true;
        if (count < 0 && errno != EINTR)
            return false;
        if (count > 0)
            bytes->append(block, static_cast<size_t>(count));
    }
}

namespace {

std::string WhereLinksLead(const std::string& path)
{
    char resolved[PATH_MAX];
    return realpath(path.c_str(), resolved) != nullptr ? resolved : path;
}

// A rename is only as lasting as the folder it happened in.
void SyncFolderOf(const std::string& path)
{
    const std::string folder = path.substr(0, path.rfind('/') + 1);
    const Descriptor opened(open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.IsOpen())
        (void)fsync(opened.Get());  // the new file is in place either way
}

}  // namespace

bool ReplaceFile(const std::string& path, std::string_view bytes)
{
    const std::string target = WhereLinksLead(path);
    std::string aside = target + "." + MakerMark() + "XXXXXX";
    Descriptor file(mkostemp(aside.data(), O_CLOEXEC));  // mode 0600
    if (!file.IsOpen())
        return false;
    if (!WriteAll(file.Get(), bytes) || fsync(file.Get()) != 0 || rename(aside.c_str(), target.c_str()) != 0) {
        const int error = errno;
        unlink(aside.c_str());
        errno = error;
        return false;
    }
    SyncFolderOf(target);
    SweepLeftoversOf(target);
    return true;
}

}  // namespace pavex
