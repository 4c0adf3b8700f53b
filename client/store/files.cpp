// client/store/files.cpp: temporary files and the removal of files.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "client/store/charset.h"
#include "client/store/descriptor.h"
#include "client/store/handle_table.h"
#include "client/store/host.h"
#include "client/store/leftovers.h"
#include "client/store/status.h"
#include "platform/store.h"

namespace {

using namespace pavex;

HandleTable<Descriptor>& Files()
{
    static HandleTable<Descriptor> files;
    return files;
}

bool IsUsableFolder(const char* folder)
{
    struct stat about {};
    return folder != nullptr && *folder == '/' && stat(folder, &about) == 0 && S_ISDIR(about.st_mode) &&
           access(folder, W_OK | X_OK) == 0;
}

// Where the user says; else in memory, since the text of every note passes through such a file: a disk's file
// system spends more on making and removing it than all else costs, and the text may be a sealed one.
std::string TemporaryFolder()
{
    if (const char* const folder = std::getenv("TMPDIR"); folder != nullptr && *folder == '/')
        return folder;
    for (const char* folder : {static_cast<const char*>(std::getenv("XDG_RUNTIME_DIR")), "/dev/shm"})
        if (IsUsableFolder(folder))
            return folder;
    return "/tmp";
}

}  // namespace

STATUS OSCreateTempFile(char* name, WORD size, DWORD* file)
{
    *file = 0;
    std::string native = TemporaryFolder() + "/" + MakerMark() + "XXXXXX";
    auto open = std::make_unique<Descriptor>(mkostemp(native.data(), O_CLOEXEC));  // mode 0600
    if (!open->IsOpen())
        return StatusOfErrno(errno);
    const std::string scs = ScsFromUtf8(native);
    if (scs.size() >= size) {
        unlink(native.c_str());
        return kStatusBadText;
    }
    std::memcpy(name, scs.c_str(), scs.size() + 1);
    *file = Files().Add(std::move(open));
    return kStatusOk;
}

STATUS OSCloseFile(DWORD file)
{
    const auto open = Files().Remove(file);
    if (open == nullptr)
        return kStatusBadHandle;
    const int error = open->Close();
    return error == 0 ? kStatusOk : StatusOfErrno(error);
}

STATUS OSFileDelete(const char* name)
{
    return unlink(Utf8FromScs(name).c_str()) == 0 ? kStatusOk : StatusOfErrno(errno);
}

namespace pavex {

void SweepTemporaryFiles()
{
    SweepLeftovers(TemporaryFolder(), "");
}

}  // namespace pavex
