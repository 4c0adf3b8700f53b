// client/foundation/number.h: numbers and the two booleans.
#pragma once

#include <cstdint>
#include <variant>

#include "client/foundation/object.h"

namespace pavex::cf {

class Number final : public Object {
public:
    static constexpr Kind kKind = Kind::Number;
    using Value = std::variant<int64_t, double>;

    explicit Number(Value value) : Object(kKind), value_(value) {}
    const Value& Get() const { return value_; }

    // An integer and a real of the same value are equal.
    bool Equals(const Object& other) const override;
    size_t HashCode() const override;

private:
    const Value value_;
};

class BooleanValue final : public Object {
public:
    static constexpr Kind kKind = Kind::Boolean;

    explicit BooleanValue(bool value) : Object(kKind, Lifetime::Constant), value_(value) {}
    bool Get() const { return value_; }

private:
    const bool value_;
};

}  // namespace pavex::cf
