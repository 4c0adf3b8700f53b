// client/import/temporary_file.cpp
#include "client/import/temporary_file.h"
#include "client/store/descriptor.h"

#include <cstdlib>
#include <string>

#include <fcntl.h>

namespace pavex {

Descriptor OpenTemporaryFile()
{
    const char* folder = std::getenv("TMPDIR");  // NOLINT(concurrency-mt-unsafe): nothing here sets it
    std::string path = std::string(folder != nullptr && *folder != '\0' ? folder : "/tmp") + "/import-XXXXXX";
    Descriptor file(::mkostemp(path.data(), O_CLOEXEC));
    if (file.IsOpen())
        ::unlink(path.c_str());
    return file;
}

}  // namespace pavex
