// client/store/descriptor.h: the one owner of a file descriptor.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>
#include <utility>

namespace pavex {

class Descriptor {
public:
    explicit Descriptor(int number = -1) noexcept : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor()
    {
        if (number_ >= 0)
            close(number_);
    }
    int Get() const { return number_; }
    bool IsOpen() const { return number_ >= 0; }
    // The descriptor, which is the caller's to close from now on.
    int Release() { return std::exchange(number_, -1); }
    // Zero, or the error that the system had kept for the end.  Nothing is done when none is open.
    int Close()
    {
        const int number = std::exchange(number_, -1);
        return number < 0 || close(number) == 0 ? 0 : errno;
    }

private:
    int number_;
};

// Writes all of it; false, with errno, when that fails.
bool WriteAll(int descriptor, std::string_view bytes);
// Reads to the end; false, with errno, when that fails.
bool ReadAll(int descriptor, std::string* bytes);
// Replaces the file whole: written aside with mode 0600, synced, renamed.  A symbolic link stays, and what
// it leads to is replaced.  False, with errno and nothing changed or left over, when that fails.  What writers
// that were killed have left beside it goes with the next success.
bool ReplaceFile(const std::string& path, std::string_view bytes);

}  // namespace pavex
