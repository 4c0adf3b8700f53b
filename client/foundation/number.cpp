// client/foundation/number.cpp: numbers and the two booleans.
// A number is kept as a 64-bit integer or a double, whatever C type it was made from.
#include "client/foundation/number.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <type_traits>

using namespace pavex::cf;

namespace {

constexpr double kTwoTo63 = 9223372036854775808.0;

bool FitsInt64(double value)
{
    return value >= -kTwoTo63 && value < kTwoTo63;  // false for NaN
}

int64_t Truncated(double value)
{
    if (FitsInt64(value))
        return static_cast<int64_t>(value);
    if (std::isnan(value))
        return 0;
    return value < 0 ? INT64_MIN : INT64_MAX;
}

bool SameValue(int64_t integer, double real)
{
    return FitsInt64(real) && static_cast<int64_t>(real) == integer && std::trunc(real) == real;
}

template <typename T> Number::Value Load(const void* source)
{
    T value;
    std::memcpy(&value, source, sizeof value);
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<double>(value);
    else
        return static_cast<int64_t>(value);
}

float Narrowed(double value)
{
    if (std::isfinite(value) && std::abs(value) > std::numeric_limits<float>::max())
        return std::copysign(std::numeric_limits<float>::infinity(), value < 0 ? -1.0f : 1.0f);
    return static_cast<float>(value);
}

// Writes the value as a T and answers whether it came through unchanged.
template <typename T> bool Store(const Number::Value& number, void* target)
{
    const auto* integer = std::get_if<int64_t>(&number);
    const double real = integer ? static_cast<double>(*integer) : std::get<double>(number);
    T value;
    bool lossless = false;
    if constexpr (std::is_floating_point_v<T>) {
        value = std::is_same_v<T, float> ? static_cast<T>(Narrowed(real)) : static_cast<T>(real);
        const auto back = static_cast<double>(value);
        lossless = integer ? SameValue(*integer, back) : back == real || std::isnan(real);
    } else {
        const int64_t whole = integer ? *integer : Truncated(real);
        value = static_cast<T>(whole);
        lossless = static_cast<int64_t>(value) == whole && (integer || SameValue(whole, real));
    }
    std::memcpy(target, &value, sizeof value);
    return lossless;
}

struct TypeRow {
    CFNumberType type;
    Number::Value (*load)(const void* source);
    bool (*store)(const Number::Value& number, void* target);
};
template <typename T> constexpr TypeRow Row(CFNumberType type)
{
    return {type, Load<T>, Store<T>};
}
constexpr TypeRow kTypes[] = {
    Row<int8_t>(kCFNumberSInt8Type),     Row<int16_t>(kCFNumberSInt16Type),     Row<int32_t>(kCFNumberSInt32Type),
    Row<int64_t>(kCFNumberSInt64Type),   Row<float>(kCFNumberFloat32Type),      Row<double>(kCFNumberFloat64Type),
    Row<signed char>(kCFNumberCharType), Row<short>(kCFNumberShortType),        Row<int>(kCFNumberIntType),
    Row<long>(kCFNumberLongType),        Row<long long>(kCFNumberLongLongType), Row<float>(kCFNumberFloatType),
    Row<double>(kCFNumberDoubleType),    Row<CFIndex>(kCFNumberCFIndexType),    Row<long>(kCFNumberNSIntegerType),
    Row<double>(kCFNumberCGFloatType),
};

const TypeRow& RowOf(CFNumberType type)
{
    for (const TypeRow& row : kTypes) {
        if (row.type == type)
            return row;
    }
    Trap();
}

const BooleanValue trueValue(true);
const BooleanValue falseValue(false);

}  // namespace

bool Number::Equals(const Object& other) const
{
    const Value& second = static_cast<const Number&>(other).value_;
    if (value_.index() == second.index())
        return value_ == second;
    return std::holds_alternative<int64_t>(value_) ? SameValue(std::get<int64_t>(value_), std::get<double>(second))
                                                   : SameValue(std::get<int64_t>(second), std::get<double>(value_));
}

size_t Number::HashCode() const
{
    if (const auto* real = std::get_if<double>(&value_)) {
        if (!SameValue(Truncated(*real), *real))
            return std::hash<double>()(*real);
        return std::hash<int64_t>()(Truncated(*real));
    }
    return std::hash<int64_t>()(std::get<int64_t>(value_));
}

extern "C" {

const CFBooleanRef kCFBooleanTrue = ToRef<CFBooleanRef>(&trueValue);
const CFBooleanRef kCFBooleanFalse = ToRef<CFBooleanRef>(&falseValue);

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType theType, const void* valuePtr)
{
    return ToRef<CFNumberRef>(New<Number>(RowOf(theType).load(valuePtr)));
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType theType, void* valuePtr)
{
    return RowOf(theType).store(As<Number>(number).Get(), valuePtr);
}

Boolean CFBooleanGetValue(CFBooleanRef boolean)
{
    return boolean && As<BooleanValue>(boolean).Get();
}

}  // extern "C"
