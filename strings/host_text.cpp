// strings/host_text.cpp: text on its way to the client, in the store's character set, and message boxes.
#include <algorithm>
#include <cstdint>
#include <new>

#include "platform/store.h"
#include "platform/windows.h"
#include "strings/cstring.h"
#include "strings/string_resources.h"

unsigned long UnicodeToSCS(const wchar_t* source, unsigned long sourceBytes, char* target, unsigned long targetSize)
{
    const size_t count = sourceBytes / sizeof(wchar_t);
    const std::unique_ptr<uint16_t[]> units(new (std::nothrow) uint16_t[count + 1]);
    if (units == nullptr)
        return 0;
    std::transform(source, source + count, units.get(), [](wchar_t c) { return static_cast<uint16_t>(c & 0xFFFF); });
    units[count] = 0;
    return OSUnicodeToSCS32(units.get(), static_cast<DWORD>(count * sizeof(uint16_t)), target,
                            static_cast<DWORD>(targetSize));
}

namespace {

// A text in SCS, cut where the buffer ends; empty when memory runs out.
struct BoxText {
    explicit BoxText(const CString& text)
    {
        const unsigned long length = UnicodeToSCS(
            text.c_str(), static_cast<unsigned long>(text.GetLength()) * sizeof(wchar_t), bytes, kBoxTextBytes);
        bytes[std::min(length, kBoxTextBytes)] = '\0';
    }
    char bytes[kBoxTextBytes + 1];
};

}  // namespace

int PlatformMessageBox(unsigned long window, const CString& text, const CString& caption, int flags)
{
    const BoxText boxText(text);
    const BoxText boxCaption(caption);
    return UIXMessageBox(static_cast<WORD>(window & 0xFFFF), boxText.bytes, boxCaption.bytes,
                         static_cast<WORD>(flags & 0xFFFF), 0);
}

unsigned short TranslateText(const char* source, unsigned short length, char* target, unsigned short size, bool toStore)
{
    return OSTranslate(toStore ? kTranslateNativeToScs : kTranslateScsToNative, source, length, target, size);
}
