// tests/client/foundation/collections_test.cpp: dictionaries, arrays and data.
#include "client/foundation/collections.h"

#include "client/foundation/number.h"

#include "tests/client/foundation/foundation_fixture.h"

class FoundationDictionary : public FoundationTest {};

TEST_F(FoundationDictionary, KeepsTheFirstValueOfAKey)
{
    const auto dictionary = MakeDictionary();
    CFDictionaryAddValue(dictionary, Make(u"key"), Make(u"first"));
    CFDictionaryAddValue(dictionary, Make(u"key"), Make(u"second"));
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 1);
    EXPECT_EQ(TextOf(static_cast<CFStringRef>(CFDictionaryGetValue(dictionary, CFSTR("key")))), u"first");
}

TEST_F(FoundationDictionary, RetainsWhatIsPutInAndLendsItOut)
{
    const long before = pavex::LiveObjects();
    {
        const auto dictionary = MakeDictionary();
        CFDictionaryAddValue(dictionary, Make(u"key"), Make(u"value"));
        EXPECT_EQ(pavex::LiveObjects(), before + 3);
        EXPECT_EQ(CFDictionaryGetValue(dictionary, CFSTR("absent")), nullptr);
    }
    EXPECT_EQ(pavex::LiveObjects(), before);
}

TEST_F(FoundationDictionary, TellsKeysApartByTheirExactUnits)
{
    const auto dictionary = MakeDictionary();
    for (const std::u16string_view key : {u"a", u"A", u"\u00E9", u"e\u0301", u""})
        CFDictionaryAddValue(dictionary, Make(key), Make(key));
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 5);
    EXPECT_EQ(TextOf(static_cast<CFStringRef>(CFDictionaryGetValue(dictionary, CFSTR("A")))), u"A");
}

TEST_F(FoundationDictionary, FindsEachOfThousandsOfKeys)
{
    const auto dictionary = MakeDictionary();
    const auto key = [](int i) {
        const std::string digits = std::to_string(i);
        return Make(std::u16string(digits.begin(), digits.end()));
    };
    for (int i = 0; i < 5000; ++i)
        CFDictionaryAddValue(dictionary, key(i), MakeNumber(i));
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 5000);
    for (int i = 0; i < 5000; ++i) {
        const void* found = CFDictionaryGetValue(dictionary, key(i));
        ASSERT_TRUE(found && CFEqual(found, MakeNumber(i))) << i;
    }
    EXPECT_EQ(CFDictionaryGetValue(dictionary, key(5000)), nullptr);
}

TEST_F(FoundationDictionary, ACopySharesTheValuesButNotTheEntries)
{
    const auto original = MakeDictionary();
    CFDictionaryAddValue(original, CFSTR("a"), Make(u"shared"));
    const Owned<CFMutableDictionaryRef> copy(CFDictionaryCreateMutableCopy(nullptr, 0, original));
    EXPECT_TRUE(CFEqual(original, copy));
    EXPECT_EQ(CFDictionaryGetValue(original, CFSTR("a")), CFDictionaryGetValue(copy, CFSTR("a")));
    CFDictionaryAddValue(copy, CFSTR("b"), Make(u"own"));
    CFDictionaryAddValue(copy, CFSTR("a"), Make(u"late"));
    EXPECT_EQ(CFDictionaryGetCount(original), 1);
    EXPECT_EQ(CFDictionaryGetCount(copy), 2);
    EXPECT_FALSE(CFEqual(original, copy));
}

TEST_F(FoundationDictionary, ACopyOutlivesTheOriginal)
{
    Owned<CFMutableDictionaryRef> original = MakeDictionary();
    CFDictionaryAddValue(original, Make(u"a"), Make(u"value"));
    const Owned<CFMutableDictionaryRef> copy(CFDictionaryCreateMutableCopy(nullptr, 1, original));
    original = MakeDictionary();
    EXPECT_EQ(TextOf(static_cast<CFStringRef>(CFDictionaryGetValue(copy, CFSTR("a")))), u"value");
}

TEST_F(FoundationDictionary, DoesNotCopyItsKeys)
{
    const auto dictionary = MakeDictionary();
    const Owned<CFMutableStringRef> key(CFStringCreateMutableCopy(nullptr, 0, CFSTR("key")));
    CFDictionaryAddValue(dictionary, key, kCFBooleanTrue);
    CFStringFindAndReplace(key, CFSTR("key"), CFSTR("changed"), CFRangeMake(0, 3), 0);
    EXPECT_EQ(CFDictionaryGetValue(dictionary, CFSTR("key")), nullptr);
}

TEST_F(FoundationDictionary, WithoutCallbacksItHoldsBarePointers)
{
    const Owned<CFMutableDictionaryRef> dictionary(CFDictionaryCreateMutable(nullptr, 1, nullptr, nullptr));
    int keys[40] = {}, values[40] = {};
    for (int i = 0; i < 40; ++i)
        CFDictionaryAddValue(dictionary, &keys[i], &values[i]);
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 40);
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(CFDictionaryGetValue(dictionary, &keys[i]), &values[i]);
    EXPECT_EQ(CFDictionaryGetValue(dictionary, nullptr), nullptr);
}

TEST_F(FoundationDictionary, AnEmptyOneAnswersANullKeyWithNull)
{
    EXPECT_EQ(CFDictionaryGetValue(MakeDictionary(), nullptr), nullptr);
}

using FoundationDictionaryDeathTest = FoundationDictionary;

TEST_F(FoundationDictionaryDeathTest, NullKeysAndValuesEndTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(CFDictionaryAddValue(MakeDictionary(), nullptr, CFSTR("v")), "");
    EXPECT_DEATH(CFDictionaryAddValue(MakeDictionary(), CFSTR("k"), nullptr), "");
}

class FoundationArray : public FoundationTest {};

TEST_F(FoundationArray, LendsItsValuesByIndex)
{
    using namespace pavex::cf;
    std::vector<Ref<const Object>> values;
    values.reserve(3);
    for (int i = 0; i < 3; ++i)
        values.push_back(Ref<const Object>::Adopt(New<Number>(int64_t{i})));
    const Owned<CFArrayRef> array(ToRef<CFArrayRef>(New<Array>(std::move(values))));
    EXPECT_EQ(CFArrayGetCount(array), 3);
    EXPECT_TRUE(CFEqual(CFArrayGetValueAtIndex(array, 2), MakeNumber(2)));
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // Misused on purpose.  NOLINTBEGIN(clang-analyzer-osx.*)
    EXPECT_DEATH(CFArrayGetValueAtIndex(array, 3), "");
    EXPECT_DEATH(CFArrayGetValueAtIndex(array, -1), "");
    // NOLINTEND(clang-analyzer-osx.*)
}

TEST_F(FoundationArray, EmptyDataHasNoBytes)
{
    using namespace pavex::cf;
    const Owned<CFDataRef> empty(ToRef<CFDataRef>(New<Data>("")));
    EXPECT_EQ(CFDataGetLength(empty), 0);
    EXPECT_EQ(CFDataGetBytePtr(empty), nullptr);
    const Owned<CFDataRef> three(ToRef<CFDataRef>(New<Data>(std::string("a\0b", 3))));
    EXPECT_EQ(CFDataGetLength(three), 3);
    EXPECT_EQ(CFDataGetBytePtr(three)[2], 'b');
}
