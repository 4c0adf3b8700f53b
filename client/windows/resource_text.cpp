// client/windows/resource_text.cpp: the texts of dialogs in the user's language.
#include "client/windows/resource_text.h"

#include "platform/foundation.h"
#include "platform/owner.h"
#include "platform/store.h"

namespace pavex {

namespace {

using StringOwner = CFOwner<CFStringRef>;

CFStringRef MakeString(const char* utf8)
{
    return CFStringCreateWithCString(nullptr, utf8, kCFStringEncodingUTF8);
}

// Empty when the text is no Unicode.
std::string Utf8Of(CFStringRef text)
{
    const CFIndex most = CFStringGetLength(text) * 3 + 1;  // bytes; no UTF-16 unit takes more than three
    std::string utf8(static_cast<size_t>(most), '\0');
    if (!CFStringGetCString(text, utf8.data(), most, kCFStringEncodingUTF8))
        return {};
    return utf8.substr(0, utf8.find('\0'));
}

}  // namespace

std::string ResourceText(unsigned int dialog, std::optional<int> control, const char* english)
{
    const CFBundleRef bundle = GetPavexBundle();
    if (bundle == nullptr || *english == '\0')
        return english;
    const std::string name = std::to_string(dialog) + (control ? "." + std::to_string(*control) : "");
    const StringOwner key(MakeString(name.c_str()));
    const StringOwner value(MakeString(english));
    const StringOwner table(MakeString("dialogs"));
    if (key.Get() == nullptr || value.Get() == nullptr || table.Get() == nullptr)
        return english;  // no memory
    const StringOwner text(CFBundleCopyLocalizedString(bundle, key.Get(), value.Get(), table.Get()));
    return text.Get() == nullptr ? english : Utf8Of(text.Get());
}

}  // namespace pavex
