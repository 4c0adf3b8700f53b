// tests/client/foundation/foundation_fixture.h: shorthands for the foundation tests.
// Every test derives from FoundationTest, which fails it when an object is left alive.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "client/foundation/host.h"
#include "platform/foundation.h"

class FoundationTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(pavex::LiveObjects(), before_) << "objects leaked or released too often"; }

private:
    const long before_ = pavex::LiveObjects();
};

struct Releaser {
    void operator()(const void* object) const { CFRelease(object); }
};
// Owns one reference to any object.
template <typename Reference> class Owned {
public:
    explicit Owned(Reference reference) : reference_(reference), object_(reference) {}
    operator Reference() const { return reference_; }
    explicit operator bool() const { return object_ != nullptr; }

private:
    Reference reference_;
    std::unique_ptr<const void, Releaser> object_;
};

inline Owned<CFStringRef> Make(std::u16string_view text)
{
    const std::vector<UniChar> units(text.begin(), text.end());
    return Owned<CFStringRef>(CFStringCreateWithCharacters(nullptr, units.data(), static_cast<CFIndex>(units.size())));
}

inline std::u16string TextOf(CFStringRef string)
{
    std::vector<UniChar> units(static_cast<size_t>(CFStringGetLength(string)));
    CFStringGetCharacters(string, CFRangeMake(0, static_cast<CFIndex>(units.size())), units.data());
    return std::u16string(units.begin(), units.end());
}

inline Owned<CFNumberRef> MakeNumber(int value)
{
    return Owned<CFNumberRef>(CFNumberCreate(nullptr, kCFNumberIntType, &value));
}

inline Owned<CFMutableDictionaryRef> MakeDictionary()
{
    return Owned<CFMutableDictionaryRef>(
        CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
}

inline Owned<CFURLRef> MakeUrl(std::string_view path, bool directory)
{
    return Owned<CFURLRef>(CFURLCreateFromFileSystemRepresentation(nullptr, reinterpret_cast<const UInt8*>(path.data()),
                                                                   static_cast<CFIndex>(path.size()), directory));
}

// The path of a URL; "(none)" when it cannot be had.
inline std::string PathOf(CFURLRef url, bool resolved = false)
{
    UInt8 buffer[8192];
    if (!CFURLGetFileSystemRepresentation(url, resolved, buffer, sizeof buffer))
        return "(none)";
    return reinterpret_cast<const char*>(buffer);
}
