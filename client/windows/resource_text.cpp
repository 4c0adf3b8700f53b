// client/windows/resource_text.cpp: the texts of dialogs and of the client's own windows in the user's language.
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
    return TableText("dialogs", std::to_string(dialog) + (control ? "." + std::to_string(*control) : ""), english);
}

std::string TableText(const char* table, const std::string& key, const char* english)
{
    const CFBundleRef bundle = GetPavexBundle();
    if (bundle == nullptr || *english == '\0')
        return english;
    const StringOwner name(MakeString(key.c_str()));
    const StringOwner value(MakeString(english));
    const StringOwner file(MakeString(table));
    if (name.Get() == nullptr || value.Get() == nullptr || file.Get() == nullptr)
        return english;  // no memory
    const StringOwner text(CFBundleCopyLocalizedString(bundle, name.Get(), value.Get(), file.Get()));
    return text.Get() == nullptr ? english : Utf8Of(text.Get());
}

std::string Localized(const ClientText& text)
{
    return TableText("client", text.key, text.english);
}

}  // namespace pavex
