// platform/owner.h: sole owner of a C handle.
#pragma once

#include <cassert>
#include <utility>

#include "platform/foundation.h"

// Owner of a handle from an Open, Create or Copy call.  Null is zero; Close runs exactly once.
template <typename Handle, auto Close> class Owner {
public:
    explicit Owner(Handle handle = {}) noexcept : handle_(handle) {}
    Owner(Owner&& other) noexcept : handle_(std::exchange(other.handle_, {})) {}
    Owner& operator=(Owner&& other) noexcept
    {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Owner()
    {
        if (handle_)
            static_cast<void>(Close(handle_));
    }

    Handle Get() const noexcept { return handle_; }
    // For calls that fill a handle in.
    Handle* Out() noexcept
    {
        assert(!handle_);
        return &handle_;
    }

private:
    Handle handle_;
};

// Of what a CoreFoundation Copy or Create call returns.
template <typename Ref> void ReleaseCF(Ref ref)
{
    CFRelease(ref);
}
template <typename Ref> using CFOwner = Owner<Ref, ReleaseCF<Ref>>;
