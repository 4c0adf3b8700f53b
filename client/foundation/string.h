// client/foundation/string.h: the string object.
#pragma once

#include <string>
#include <string_view>

#include "client/foundation/object.h"

namespace pavex::cf {

class String final : public Object {
public:
    static constexpr Kind kKind = Kind::String;

    explicit String(std::u16string text, Lifetime lifetime = Lifetime::Counted)
        : Object(kKind, lifetime), text_(std::move(text))
    {
    }

    std::u16string_view Text() const { return text_; }
    void SetText(std::u16string text) { text_ = std::move(text); }  // of a mutable copy, by its one thread

    bool Equals(const Object& other) const override { return text_ == static_cast<const String&>(other).text_; }
    size_t HashCode() const override { return std::hash<std::u16string>()(text_); }

private:
    std::u16string text_;
};

inline std::u16string_view TextOf(CFStringRef string)
{
    return As<String>(string).Text();
}
// Empty for a null reference.
inline std::u16string_view TextOrEmpty(CFStringRef string)
{
    return string ? TextOf(string) : std::u16string_view();
}

}  // namespace pavex::cf
