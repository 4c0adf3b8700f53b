// strings/string_resources.cpp: the numbered texts of the add-in's bundle.
// The dialog's thread and the indexing thread both load texts, so the cache has a lock, which is held
// while the bundle is asked: it is asked once for a text, whoever comes first.
#include "strings/string_resources.h"

#include <cstdio>

#include "platform/foundation.h"
#include "platform/owner.h"
#include "platform/store.h"
#include "strings/cstring.h"

namespace {

constexpr const char* kTextTable = "libtorvik";

// Empty without a bundle or a key.
std::wstring AskBundle(unsigned int id)
{
    char digits[16];
    std::snprintf(digits, sizeof digits, "%d", static_cast<int>(id));
    const CFBundleRef bundle = GetPavexBundle();
    const CFStringEncoding encoding = CFStringGetSystemEncoding();
    const CFOwner<CFStringRef> key(CFStringCreateWithCString(nullptr, digits, encoding));
    const CFOwner<CFStringRef> table(CFStringCreateWithCString(nullptr, kTextTable, encoding));
    if (bundle == nullptr || key.Get() == nullptr || table.Get() == nullptr)
        return {};
    // the number is its own default: a text that was forgotten shows which one it is
    const CFOwner<CFStringRef> text(CFBundleCopyLocalizedString(bundle, key.Get(), key.Get(), table.Get()));
    return text.Get() != nullptr ? CString(text.Get()).GetWString() : std::wstring();
}

}  // namespace

StringResourceMap* StringResourceMap::GetInstance()
{
    // Never destroyed: the indexing thread may ask for a text while the client ends.
    static StringResourceMap* const instance = new StringResourceMap;
    return instance;
}

void StringResourceMap::LoadString(unsigned int id, std::wstring& out)
{
    const std::lock_guard guard(lock_);
    const auto found = texts_.find(id);
    out = found != texts_.end() ? *found->second : LoadLocked(id);
}

std::wstring StringResourceMap::Load(unsigned int id)
{
    const std::lock_guard guard(lock_);
    return LoadLocked(id);
}

const std::wstring& StringResourceMap::LoadLocked(unsigned int id)
{
    std::unique_ptr<std::wstring>& text = texts_[id];
    text = std::make_unique<std::wstring>(AskBundle(id));
    return *text;
}
