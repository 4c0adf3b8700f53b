// client/foundation/object.h: what every foundation object is: counted, comparable, of a known kind.
// The opaque references of platform/foundation.h are pointers to Object in disguise; As() and ToRef() are
// the only ways between the two.  A null or wrong reference ends the process there and then, as does
// exhausted memory: a caller could do nothing sensible, and quiet damage would be worse.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "platform/foundation.h"

namespace pavex::cf {

enum class Kind { String, Dictionary, Array, Data, Number, Boolean, Date, Url, Bundle, PowerSources };
enum class Lifetime { Counted, Constant };

class Object {
public:
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object();

    Kind GetKind() const { return kind_; }
    void Retain() const;
    void Release() const;
    // Only called with an object of the same kind; the default is identity.
    virtual bool Equals(const Object& other) const { return this == &other; }
    virtual size_t HashCode() const { return reinterpret_cast<uintptr_t>(this) >> 4; }

protected:
    explicit Object(Kind kind, Lifetime lifetime = Lifetime::Counted);

private:
    const Kind kind_;
    const Lifetime lifetime_;
    mutable std::atomic<uint32_t> references_{1};
};

// Ends the process: the caller broke the contract.
[[noreturn]] void Trap();

inline const Object& AsObject(CFTypeRef ref)
{
    if (!ref)
        Trap();
    return *static_cast<const Object*>(ref);
}

// The object behind a reference that must be of T's kind.
template <typename T> const T& As(CFTypeRef ref)
{
    const Object& object = AsObject(ref);
    if (object.GetKind() != T::kKind)
        Trap();
    return static_cast<const T&>(object);
}

template <typename T> T& AsMutable(void* ref)
{
    if (!ref || static_cast<Object*>(ref)->GetKind() != T::kKind)
        Trap();
    return static_cast<T&>(*static_cast<Object*>(ref));
}

template <typename Reference> Reference ToRef(const Object* object)
{
    return static_cast<Reference>(static_cast<const void*>(object));
}

template <typename Reference> Reference ToMutableRef(Object* object)
{
    return static_cast<Reference>(static_cast<void*>(object));
}

// Exhausted memory ends the process here: an exception must not leave a C function.
template <typename T, typename... Arguments> T* New(Arguments&&... arguments) noexcept
{
    return new T(std::forward<Arguments>(arguments)...);  // NOLINT(bugprone-unhandled-exception-at-new)
}

// Holds one reference to an object, or none.
template <typename T> class Ref {
public:
    Ref() = default;
    static Ref Adopt(T* object)
    {
        Ref ref;
        ref.object_ = object;
        return ref;
    }
    Ref(const Ref& other) : object_(other.object_)
    {
        if (object_)
            object_->Retain();
    }
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Ref& operator=(Ref other) noexcept
    {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ref()
    {
        if (object_)
            object_->Release();
    }

    explicit operator bool() const { return object_ != nullptr; }
    T* Get() const { return object_; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    T* Detach() { return std::exchange(object_, nullptr); }  // the reference is the caller's now

private:
    T* object_ = nullptr;
};

}  // namespace pavex::cf
