// client/search/file_text.cpp: a small file as text.
#include "client/search/file_text.h"

#include <fcntl.h>

#include "client/store/descriptor.h"

namespace pavex {

std::optional<std::string> ReadFileText(const std::string& path)
{
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::string text;
    if (!file.IsOpen() || !ReadAll(file.Get(), &text))
        return std::nullopt;
    return text;
}

}  // namespace pavex
