// strings/cstring.cpp: the add-in's wide string.
// Conversions copy code units one by one; they never combine or split surrogate pairs, so that what
// came in as a pair goes out as the same pair.
#include "strings/cstring.h"

#include <cctype>
#include <climits>
#include <vector>

#include "platform/owner.h"
#include "strings/string_resources.h"

static_assert(sizeof(wchar_t) == 4, "a character is 32 bits wide");
static_assert(sizeof(UniChar) == sizeof(unsigned short));

namespace {

// The units up to the first 0, one character each.
std::wstring Widen(const UniChar* units, size_t count)
{
    std::wstring wide;
    wide.reserve(count);
    for (size_t i = 0; i < count && units[i] != 0; ++i)
        wide.push_back(static_cast<wchar_t>(units[i]));
    return wide;
}

std::wstring Widen(CFStringRef text)
{
    const CFIndex length = CFStringGetLength(text);
    std::vector<UniChar> units(static_cast<size_t>(length));
    CFStringGetCharacters(text, CFRangeMake(0, length), units.data());
    return Widen(units.data(), units.size());
}

}  // namespace

CString::CString(const wchar_t* s) : text_(s != nullptr ? s : L"") {}

CString::CString(wchar_t c) : text_(1, c) {}

CString::CString(const std::wstring& s) : text_(s) {}

CString::CString(const char* s) : text_(StrToWString(s)) {}

CString::CString(const unsigned short* s, int n)
{
    if (s == nullptr)
        return;
    if (n == 0) {
        while (s[n] != 0)
            ++n;
    }
    text_ = UniCharToWString(s, n);
}

CString::CString(CFStringRef s)
{
    if (s != nullptr)
        text_ = Widen(s);
}

std::wstring CString::StrToWString(const char* s) const
{
    if (s == nullptr)
        return {};
    const CFOwner<CFStringRef> text(CFStringCreateWithCString(nullptr, s, kCFStringEncodingUTF8));
    return text.Get() != nullptr ? Widen(text.Get()) : std::wstring();
}

std::wstring CString::UniCharToWString(const unsigned short* s, int n)
{
    return n > 0 ? Widen(s, static_cast<size_t>(n)) : std::wstring();
}

CFStringRef CString::toCFStringRef() const
{
    std::vector<UniChar> units;
    units.reserve(text_.size());
    for (const wchar_t c : text_)
        units.push_back(static_cast<UniChar>(c & 0xFFFF));
    return CFStringCreateWithCharacters(kCFAllocatorDefault, units.data(), static_cast<CFIndex>(units.size()));
}

std::string CString::toString() const
{
    const CFOwner<CFStringRef> text(toCFStringRef());
    const CFIndex length = CFStringGetLength(text.Get());
    std::string bytes(static_cast<size_t>(4 * length + 1), '\0');
    CFIndex used = 0;
    // loss byte 0: stops at what cannot be encoded, rather than putting something else in its place
    CFStringGetBytes(text.Get(), CFRangeMake(0, length), kCFStringEncodingUTF8, 0, false,
                     reinterpret_cast<UInt8*>(bytes.data()), static_cast<CFIndex>(bytes.size()), &used);
    bytes.resize(static_cast<size_t>(used));
    return bytes;
}

CString& CString::MakeLower()
{
    for (wchar_t& c : text_) {
        if (c >= 0 && c <= UCHAR_MAX)  // tolower is defined for these only; it leaves the others as they are
            c = static_cast<wchar_t>(std::tolower(static_cast<int>(c)));
    }
    return *this;
}

CString& CString::operator+=(const CString& other)
{
    text_ += other.text_;
    return *this;
}

int CString::Find(const CString& sub, int start) const
{
    const size_t from = start > 0 ? static_cast<size_t>(start) : 0;
    const size_t index = text_.find(sub.text_, from);
    return index == std::wstring::npos ? -1 : static_cast<int>(index);
}

int CString::CompareNoCase(const CString& other) const
{
    const CFOwner<CFStringRef> mine(toCFStringRef());
    const CFOwner<CFStringRef> theirs(other.toCFStringRef());
    return static_cast<int>(CFStringCompare(mine.Get(), theirs.Get(), kCFCompareCaseInsensitive));
}

CString CString::Left(int n) const
{
    return n >= 1 && n < GetLength() ? CString(text_.substr(0, static_cast<size_t>(n))) : CString();
}

CString CString::Right(int n) const
{
    return n >= 1 && n < GetLength() ? CString(text_.substr(static_cast<size_t>(GetLength() - n))) : CString();
}

CString CString::Mid(int start, int count) const
{
    if (start < 0 || count < 0 || start > GetLength() || count > GetLength() - start)
        return {};
    return CString(text_.substr(static_cast<size_t>(start), static_cast<size_t>(count)));
}

CString CString::Mid(int start) const
{
    return start >= 0 && start < GetLength() ? CString(text_.substr(static_cast<size_t>(start))) : CString();
}

bool CString::LoadString(int id)
{
    StringResourceMap* const texts = StringResourceMap::GetInstance();
    if (texts == nullptr)
        return false;
    texts->LoadString(static_cast<unsigned int>(id), text_);
    return true;
}
