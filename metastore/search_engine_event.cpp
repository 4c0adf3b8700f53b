// metastore/search_engine_event.cpp: one note's metadata on its way into a metafile.
#include "metastore/search_engine_event.h"

#include <algorithm>

#include "metastore/search_engine.h"
#include "platform/owner.h"

namespace {

constexpr const char* kVersionKey = "com_quorvex_morvane_pavex_metafile_version";
constexpr const char* kVersion = "1.0.0";
constexpr wchar_t kReplacement = 0xFFFD;

bool IsHighSurrogate(wchar_t unit)
{
    return (unit & 0xFC00) == 0xD800;
}

bool IsLowSurrogate(wchar_t unit)
{
    return (unit & 0xFC00) == 0xDC00;
}

bool IsForbiddenInXml(wchar_t unit)
{
    return (unit < 0x20 && unit != L'\t' && unit != L'\n' && unit != L'\r') || unit == 0xFFFE || unit == 0xFFFF;
}

// Index of the first unit at or after `start` that no XML text can hold; the length when there is none.
// `start` is no second half of a pair.
int FindBadUnit(const CString& text, int start)
{
    const int length = text.GetLength();
    for (int i = start; i < length; ++i) {
        const wchar_t unit = text[i] & 0xFFFF;
        if (IsHighSurrogate(unit) && i + 1 < length && IsLowSurrogate(text[i + 1] & 0xFFFF))
            ++i;  // a pair is one character
        else if (IsForbiddenInXml(unit) || IsHighSurrogate(unit) || IsLowSurrogate(unit))
            return i;
    }
    return length;
}

// A text with U+FFFD for the units that XML cannot hold; the caller releases it.  Here metafiles differ from
// those that the property-list writer of macOS makes of the same text: it writes control characters as they
// are, into a file that nobody can read, and drops what stands behind half a pair.
CFStringRef CopyXmlText(const CString& text)
{
    int bad = FindBadUnit(text, 0);
    if (bad == text.GetLength())
        return text.toCFStringRef();  // as nearly always: no copy is made
    CString clean = text;
    for (; bad < clean.GetLength(); bad = FindBadUnit(clean, bad + 1))
        clean[bad] = kReplacement;
    return clean.toCFStringRef();
}

// The years that a property list can hold; a time outside them comes as the nearest that it can.
constexpr double kFirstTime = -63113904000.0;  // 0001-01-01T00:00:00Z
constexpr double kLastTime = 252423993599.0;   // 9999-12-31T23:59:59Z

// Keys are the indexers' own, and plain ASCII.  An existing entry stays.  Null (out of memory): nothing is added.
void AddValue(CFMutableDictionaryRef properties, const CString& key, CFTypeRef value)
{
    const CFOwner<CFStringRef> name(key.toCFStringRef());
    if (name.Get() != nullptr && value != nullptr)
        CFDictionaryAddValue(properties, name.Get(), value);
}

}  // namespace

SearchEngineEvent::SearchEngineEvent(SearchEngineEventType type)
    : properties_(CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                            &kCFTypeDictionaryValueCallBacks)),
      type_(type)
{
    AddProperty(kVersionKey, kVersion);
}

SearchEngineEvent::SearchEngineEvent(const SearchEngineEvent& other)
    : properties_(CFDictionaryCreateMutableCopy(kCFAllocatorDefault, 0, other.properties_)), type_(other.type_)
{
}

SearchEngineEvent::~SearchEngineEvent()
{
    if (properties_ != nullptr)
        CFRelease(properties_);
}

SearchEngineResult SearchEngineEvent::AddProperty(const CString& key, const CString& value)
{
    const CFOwner<CFStringRef> text(CopyXmlText(value));
    AddValue(properties_, key, text.Get());
    return kSearchEngineNoError;
}

SearchEngineResult SearchEngineEvent::AddProperty(const CString& key, const double& value)
{
    const CFOwner<CFDateRef> date(CFDateCreate(kCFAllocatorDefault, std::clamp(value, kFirstTime, kLastTime)));
    AddValue(properties_, key, date.Get());
    return kSearchEngineNoError;
}

SearchEngineResult SearchEngineEvent::AddProperty(const CString& key, const unsigned int& value)
{
    const CFOwner<CFNumberRef> number(CFNumberCreate(kCFAllocatorDefault, kCFNumberIntType, &value));
    AddValue(properties_, key, number.Get());
    return kSearchEngineNoError;
}

SearchEngineResult SearchEngineEvent::Send(int flags, int* error)
{
    if (error != nullptr)
        *error = 0;
    // a metafile that cannot be written must not end the note's indexing, nor the pass
    static_cast<void>(SearchEngine::GetInstance()->SendEvent(*this, flags));
    return kSearchEngineNoError;
}
