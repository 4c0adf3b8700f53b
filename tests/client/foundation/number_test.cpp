// tests/client/foundation/number_test.cpp: numbers and booleans.
#include "client/foundation/number.h"

#include <climits>
#include <cmath>
#include <limits>

#include "tests/client/foundation/foundation_fixture.h"

class FoundationNumber : public FoundationTest {};

namespace {

template <typename T> Owned<CFNumberRef> Number(CFNumberType type, T value)
{
    return Owned<CFNumberRef>(CFNumberCreate(nullptr, type, &value));
}

// Whether the value came through, and what was written.
template <typename T> std::pair<bool, T> Get(CFNumberRef number, CFNumberType type)
{
    T value{};
    const bool lossless = CFNumberGetValue(number, type, &value);
    return {lossless, value};
}

}  // namespace

TEST_F(FoundationNumber, KeepsTheValueOfEveryType)
{
    EXPECT_EQ(Get<int>(Number(kCFNumberIntType, -5), kCFNumberIntType), std::pair(true, -5));
    EXPECT_EQ(Get<int8_t>(Number(kCFNumberSInt8Type, int8_t{-128}), kCFNumberCharType), std::pair(true, int8_t{-128}));
    EXPECT_EQ(Get<int64_t>(Number(kCFNumberSInt16Type, int16_t{-3}), kCFNumberSInt64Type),
              std::pair(true, int64_t{-3}));
    EXPECT_EQ(Get<long>(Number(kCFNumberLongLongType, LLONG_MIN), kCFNumberLongType), std::pair(true, LONG_MIN));
    EXPECT_EQ(Get<CFIndex>(Number(kCFNumberSInt32Type, INT32_MAX), kCFNumberCFIndexType),
              std::pair(true, CFIndex{INT32_MAX}));
    EXPECT_EQ(Get<double>(Number(kCFNumberFloatType, 1.5f), kCFNumberDoubleType), std::pair(true, 1.5));
    EXPECT_EQ(Get<float>(Number(kCFNumberDoubleType, 0.25), kCFNumberFloat32Type), std::pair(true, 0.25f));
    EXPECT_EQ(Get<short>(Number(kCFNumberFloat64Type, -7.0), kCFNumberShortType), std::pair(true, short{-7}));
}

TEST_F(FoundationNumber, WritesATruncatedValueAndSaysSo)
{
    const auto large = Number(kCFNumberSInt64Type, int64_t{1} << 31);
    EXPECT_EQ(Get<int>(large, kCFNumberIntType), std::pair(false, INT_MIN));
    EXPECT_EQ(Get<int>(Number(kCFNumberDoubleType, 1.5), kCFNumberIntType), std::pair(false, 1));
    EXPECT_EQ(Get<int>(Number(kCFNumberDoubleType, -1.5), kCFNumberIntType), std::pair(false, -1));
    EXPECT_FALSE(Get<int>(Number(kCFNumberDoubleType, std::nan("")), kCFNumberIntType).first);
    EXPECT_FALSE(Get<int64_t>(Number(kCFNumberDoubleType, 1e30), kCFNumberSInt64Type).first);
    EXPECT_FALSE(Get<int64_t>(Number(kCFNumberDoubleType, -HUGE_VAL), kCFNumberSInt64Type).first);
    EXPECT_FALSE(Get<double>(Number(kCFNumberSInt64Type, INT64_MAX), kCFNumberDoubleType).first);
    EXPECT_EQ(Get<float>(Number(kCFNumberDoubleType, 1e300), kCFNumberFloatType), std::pair(false, HUGE_VALF));
    EXPECT_FALSE(Get<float>(Number(kCFNumberDoubleType, 0.1), kCFNumberFloatType).first);
}

TEST_F(FoundationNumber, AnUnsignedValueGoesInByItsBits)
{
    const unsigned value = 0x80000001u;
    const Owned<CFNumberRef> number(CFNumberCreate(nullptr, kCFNumberIntType, &value));
    EXPECT_EQ(Get<int64_t>(number, kCFNumberSInt64Type), std::pair(true, int64_t{-0x7FFFFFFF}));
}

TEST_F(FoundationNumber, EqualityIsByValueWhateverTheType)
{
    EXPECT_TRUE(CFEqual(Number(kCFNumberIntType, 2), Number(kCFNumberDoubleType, 2.0)));
    EXPECT_EQ(CFHash(Number(kCFNumberIntType, 2)), CFHash(Number(kCFNumberDoubleType, 2.0)));
    EXPECT_FALSE(CFEqual(Number(kCFNumberIntType, 2), Number(kCFNumberDoubleType, 2.5)));
    EXPECT_FALSE(CFEqual(Number(kCFNumberSInt64Type, INT64_MAX), Number(kCFNumberDoubleType, 9223372036854775808.0)));
}

TEST_F(FoundationNumber, OnlyTheTrueConstantIsTrue)
{
    EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue));
    EXPECT_FALSE(CFBooleanGetValue(kCFBooleanFalse));
    EXPECT_FALSE(CFBooleanGetValue(nullptr));
}
