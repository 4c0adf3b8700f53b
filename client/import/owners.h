// client/import/owners.h: sole owners of what the C libraries of the importers hand out.
#pragma once

#include <memory>
#include <utility>

#include <glib-object.h>
#include <unistd.h>

namespace pavex {

struct ObjectReleaser {
    template <typename Object> void operator()(Object* object) const { g_object_unref(object); }
};
// Sole owner of a reference to an object of GMime.
template <typename Object> using ObjectOwner = std::unique_ptr<Object, ObjectReleaser>;

struct MemoryReleaser {
    void operator()(void* memory) const { g_free(memory); }
};
using TextOwner = std::unique_ptr<char, MemoryReleaser>;

// Sole owner of a file descriptor; -1 is none.
class FileOwner {
public:
    explicit FileOwner(int descriptor = -1) noexcept : descriptor_(descriptor) {}
    FileOwner(FileOwner&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileOwner& operator=(FileOwner&& other) noexcept
    {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~FileOwner()
    {
        if (descriptor_ >= 0)
            ::close(descriptor_);
    }
    int Get() const noexcept { return descriptor_; }
    int Release() noexcept { return std::exchange(descriptor_, -1); }
    explicit operator bool() const noexcept { return descriptor_ >= 0; }

private:
    int descriptor_;
};

}  // namespace pavex
