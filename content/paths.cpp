// content/paths.cpp: file paths in the store's character set.
#include "content/paths.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "content/scs_text.h"

namespace {

// Appends as much as fits, whole characters, and keeps the path terminated.
size_t Append(std::string_view text, char* path, size_t length)
{
    const size_t room = kPathBytes - 1 - length;
    const size_t fitting = text.size() <= room ? text.size() : WholeScsBytes(text.data(), room);
    std::memmove(path + length, text.data(), fitting);
    path[length + fitting] = '\0';
    return length + fitting;
}

}  // namespace

bool MyPathIsAbsolute(const char* path)
{
    if (*path == '/')
        return true;
    for (; *path != '\0'; path = OSNextCharacter(path)) {
        if (*path == ':')
            return true;
    }
    return false;
}

WORD MyPathConstruct(const char* directory, const char* file, char* path)
{
    size_t length = Append(directory, path, 0);
    if (length != 0 && path[length - 1] != '/' && *file != '/')
        length = Append("/", path, length);
    return static_cast<WORD>(Append(file, path, length));
}
