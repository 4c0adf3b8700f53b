// client/foundation/object.cpp: reference counting and the calls that take any object.
#include "client/foundation/object.h"

#include <cstdlib>

#include "client/foundation/host.h"

namespace pavex {

namespace {
std::atomic<long> liveObjects{0};  // written by Object's constructor and destructor only
}

long LiveObjects()
{
    return liveObjects.load(std::memory_order_relaxed);
}

namespace cf {

Object::Object(Kind kind, Lifetime lifetime) : kind_(kind), lifetime_(lifetime)
{
    if (lifetime_ == Lifetime::Counted)
        liveObjects.fetch_add(1, std::memory_order_relaxed);
}

Object::~Object()
{
    if (lifetime_ == Lifetime::Counted)
        liveObjects.fetch_sub(1, std::memory_order_relaxed);
}

void Object::Retain() const
{
    if (lifetime_ == Lifetime::Counted)
        references_.fetch_add(1, std::memory_order_relaxed);
}

void Object::Release() const
{
    if (lifetime_ == Lifetime::Constant)
        return;
    // Acquire and release: the last owner must see what the others did with the object before it goes.
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete this;
}

void Trap()
{
    std::abort();
}

}  // namespace cf
}  // namespace pavex

using pavex::cf::AsObject;

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;

CFTypeRef CFRetain(CFTypeRef cf)
{
    AsObject(cf).Retain();
    return cf;
}

void CFRelease(CFTypeRef cf)
{
    AsObject(cf).Release();
}

Boolean CFEqual(CFTypeRef cf1, CFTypeRef cf2)
{
    const pavex::cf::Object& first = AsObject(cf1);
    const pavex::cf::Object& second = AsObject(cf2);
    return first.GetKind() == second.GetKind() && (&first == &second || first.Equals(second));
}

CFHashCode CFHash(CFTypeRef cf)
{
    return AsObject(cf).HashCode();
}

}  // extern "C"
