// strings/cstring.h: the add-in's wide string.
// Every text a user sees and every property key and value passes through it.  One 32-bit character
// holds one UTF-16 unit, so a character above U+FFFF is two of them, in and out.
#pragma once

#include <string>

#include "platform/foundation.h"

// Value semantics; lengths and indexes count 32-bit characters.  Not shared between threads.
class CString {
public:
    CString() = default;
    CString(const wchar_t* s);  // up to the terminating 0; null: empty
    CString(wchar_t c);
    CString(const std::wstring& s);
    CString(const char* s);  // UTF-8; empty when null or malformed
    // n UTF-16 units (0: up to the first 0 unit), cut at the first 0.
    CString(const unsigned short* s, int n);
    CString(CFStringRef s);  // borrowed; cut at the first U+0000; null: empty

    // The units of zero-terminated UTF-8, cut at the first U+0000; empty when it is malformed.
    std::wstring StrToWString(const char* s) const;
    // The first n units of s, cut at the first 0; empty for n below 1.
    std::wstring UniCharToWString(const unsigned short* s, int n);
    // The low 16 bits of each character.  Never null; the caller releases it.
    CFStringRef toCFStringRef() const;
    // UTF-8, up to the first character that has none (a lone surrogate).
    std::string toString() const;
    std::wstring GetWString() const { return text_; }
    const wchar_t* c_str() const { return text_.c_str(); }

    int GetLength() const { return static_cast<int>(text_.size()); }
    bool IsEmpty() const { return text_.empty(); }
    void Empty() { text_.clear(); }
    // Indexes are not checked.
    wchar_t GetAt(int i) const { return text_[static_cast<size_t>(i)]; }
    wchar_t operator[](int i) const { return text_[static_cast<size_t>(i)]; }
    wchar_t& operator[](int i) { return text_[static_cast<size_t>(i)]; }

    CString& MakeLower();  // by the C library's tolower, character by character
    CString& operator+=(const CString& other);
    bool operator==(const CString& other) const { return text_ == other.text_; }
    bool operator!=(const CString& other) const { return text_ != other.text_; }
    // Index of the first occurrence at or after start, or -1.
    int Find(const CString& sub, int start = 0) const;
    // -1, 0 or 1 by case folding, without a locale; -1: this one sorts first.
    int CompareNoCase(const CString& other) const;

    // What is out of range is empty, never clamped: Left and Right of the whole length too, while
    // Mid(0, length) is the whole text.
    CString Left(int n) const;
    CString Right(int n) const;
    CString Mid(int start, int count) const;
    CString Mid(int start) const;

    // Replaces the text by localized text `id`.  False, and unchanged, only without a string table.
    bool LoadString(int id);

private:
    std::wstring text_;
};
