// client/foundation/date.h: the date object.
#pragma once

#include <functional>

#include "client/foundation/object.h"

namespace pavex::cf {

class Date final : public Object {
public:
    static constexpr Kind kKind = Kind::Date;

    explicit Date(CFAbsoluteTime at) : Object(kKind), at_(at) {}
    CFAbsoluteTime At() const { return at_; }

    bool Equals(const Object& other) const override { return at_ == static_cast<const Date&>(other).at_; }
    size_t HashCode() const override { return std::hash<double>()(at_); }

private:
    const CFAbsoluteTime at_;
};

}  // namespace pavex::cf
