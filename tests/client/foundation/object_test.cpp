// tests/client/foundation/object_test.cpp: ownership.
#include "client/foundation/object.h"

#include <thread>

#include "tests/client/foundation/foundation_fixture.h"

class ObjectOwnership : public FoundationTest {};

TEST_F(ObjectOwnership, EndsAnObjectWithItsLastReference)
{
    const long before = pavex::LiveObjects();
    CFStringRef string = CFStringCreateWithCString(nullptr, "text", kCFStringEncodingUTF8);
    EXPECT_EQ(pavex::LiveObjects(), before + 1);
    EXPECT_EQ(CFRetain(string), string);
    CFRelease(string);
    EXPECT_EQ(TextOf(string), u"text");
    EXPECT_EQ(pavex::LiveObjects(), before + 1);
    CFRelease(string);
    EXPECT_EQ(pavex::LiveObjects(), before);
}

TEST_F(ObjectOwnership, ConstantsTakeAnyNumberOfReleases)
{
    CFStringRef constant = CFSTR("constant \xC3\xA9");
    for (int i = 0; i < 100; ++i) {
        CFRelease(constant);
        CFRelease(kCFBooleanTrue);
        CFRelease(kCFBooleanFalse);
    }
    EXPECT_EQ(TextOf(constant), u"constant é");
    EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue));
}

TEST_F(ObjectOwnership, AConstantIsOneObjectWhereverItIsWritten)
{
    EXPECT_EQ(CFSTR("same"), CFSTR("same"));
    EXPECT_NE(CFSTR("same"), CFSTR("other"));
}

TEST_F(ObjectOwnership, EqualityIsOfKindAndValue)
{
    const auto one = MakeNumber(1);
    EXPECT_TRUE(CFEqual(Make(u"a"), CFSTR("a")));
    EXPECT_EQ(CFHash(Make(u"a")), CFHash(CFSTR("a")));
    EXPECT_FALSE(CFEqual(Make(u"a"), CFSTR("A")));
    EXPECT_FALSE(CFEqual(Make(u"\u00E9"), Make(u"e\u0301")));
    EXPECT_FALSE(CFEqual(Make(u"1"), one));
    EXPECT_FALSE(CFEqual(one, kCFBooleanTrue));
    EXPECT_TRUE(CFEqual(kCFBooleanTrue, kCFBooleanTrue));
}

TEST_F(ObjectOwnership, ReferencesAreCountedAcrossThreads)
{
    const auto string = Make(u"shared");
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&string] {
            for (int k = 0; k < 2000; ++k) {
                CFRetain(string);
                EXPECT_EQ(CFStringGetLength(string), 6);
                CFRelease(string);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(TextOf(string), u"shared");
}

using ObjectOwnershipDeathTest = ObjectOwnership;

TEST_F(ObjectOwnershipDeathTest, NullAndWrongKindsEndTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // Misused on purpose.  NOLINTBEGIN(clang-analyzer-osx.*)
    EXPECT_DEATH(CFRetain(nullptr), "");
    EXPECT_DEATH(CFRelease(nullptr), "");
    // NOLINTEND(clang-analyzer-osx.*)
    EXPECT_DEATH(CFStringGetLength(static_cast<CFStringRef>(static_cast<const void*>(kCFBooleanTrue))), "");
}
