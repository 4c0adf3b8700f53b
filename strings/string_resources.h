// strings/string_resources.h: numbered localized texts, message boxes, and the store's character set.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

// The texts of the bundle's table "libtorvik", by number, each asked for once.  Any thread.
class StringResourceMap {
public:
    // The one instance, made on the first call.
    static StringResourceMap* GetInstance();

    // The text of `id`.  A number that the table does not have reads as its decimal digits; without a
    // bundle the text is empty.
    void LoadString(unsigned int id, std::wstring& out);
    // Asks the bundle, also when the text is known, and keeps what it answers.
    std::wstring Load(unsigned int id);

    StringResourceMap(const StringResourceMap&) = delete;
    StringResourceMap& operator=(const StringResourceMap&) = delete;

private:
    StringResourceMap() = default;
    ~StringResourceMap() = default;
    const std::wstring& LoadLocked(unsigned int id);

    std::mutex lock_;
    std::map<unsigned int, std::unique_ptr<std::wstring>> texts_;  // guarded by lock_
};

class CString;

constexpr unsigned long kBoxTextBytes = 1024;  // longest text or caption of a message box, SCS

// Modal message box over a host window (its low 16 bits count).  flags: kBox... of platform/windows.h.
// Text and caption are cut after kBoxTextBytes.  Returns the host's answer, kAnswerOk for OK.  Main thread.
int PlatformMessageBox(unsigned long window, const CString& text, const CString& caption, int flags);

// The low 16 bits of sourceBytes / 4 characters as SCS; returns the bytes written, at most targetSize,
// not terminated.  0 when memory runs out.
unsigned long UnicodeToSCS(const wchar_t* source, unsigned long sourceBytes, char* target, unsigned long targetSize);

// Native text (UTF-8) to SCS when toStore, else SCS to native.  length and size in bytes; returns the
// bytes written, at most size.  The caller terminates the text.
unsigned short TranslateText(const char* source, unsigned short length, char* target, unsigned short size,
                             bool toStore);
