// content/body_text.cpp: reads a note's rich text by way of the store's own export into a temporary file.
// Lines are gathered up to a threshold and then flushed, so that a body of any size passes through
// bounded buffers.
#include "content/body_text.h"

#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "content/buffers.h"
#include "content/scs_text.h"
#include "platform/posix.h"
#include "settings/settings.h"

namespace {

constexpr char kContentKey[] = "com.quorvex.pavex.content";
constexpr char kDefaultBodyItems[] = "Body,DetailedReport";
constexpr char kLineEnd[] = "\r\n";
constexpr WORD kLineEndBytes = 2;
constexpr WORD kUnwrapped = 65535;
constexpr size_t kTempNameBytes = 768;
constexpr int kReadLimit = 32769;  // bytes a call of fgets, its NUL included
constexpr size_t kFlushBytes = 58976;
constexpr DWORD kBodyFont = 0x0A000001;

// A temporary file of the store's, by name; the file itself is deleted unless it was given up.
class TemporaryText {
public:
    TemporaryText()
    {
        DWORD file = 0;
        if (OSCreateTempFile(name_, sizeof name_, &file) != kStatusOk)
            return;
        created_ = true;
        static_cast<void>(OSCloseFile(file));  // only the name is wanted
    }
    ~TemporaryText()
    {
        if (created_)
            static_cast<void>(OSFileDelete(name_));
    }
    TemporaryText(const TemporaryText&) = delete;
    TemporaryText& operator=(const TemporaryText&) = delete;

    bool Created() const { return created_; }
    const char* Name() const { return name_; }
    void GiveUp() { created_ = false; }

    std::FILE* OpenForReading() const
    {
        char native[kTempNameBytes];
        const WORD length =
            OSTranslate(kTranslateScsToNative, name_, static_cast<WORD>(std::strlen(name_)), native, sizeof native - 1);
        native[length] = '\0';
        return std::fopen(native, "r");
    }

private:
    char name_[kTempNameBytes] = {};
    bool created_ = false;
};

struct FileCloser {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using FileOwner = std::unique_ptr<std::FILE, FileCloser>;

// Gathers the lines of a text without its leading blanks, and passes them on in flushes.
class TextFlusher {
public:
    explicit TextFlusher(COMPOUNDHANDLE compound) : compound_(compound) {}

    void AddLine(std::string_view line)
    {
        if (!textSeen_) {
            const size_t first = line.find_first_not_of(" \r\n\t");
            if (first == std::string_view::npos)
                return;
            line.remove_prefix(first);
            textSeen_ = true;
        }
        gathered_.append(line);
        if (gathered_.size() >= kFlushBytes)
            Flush(CompleteBytes());
    }

    CString Finish()
    {
        if (!gathered_.empty())
            Flush(gathered_.size());
        return std::move(result_);
    }

private:
    // A line longer than one read may have been cut inside a character or a line end: that much waits
    // for the next flush.
    size_t CompleteBytes() const
    {
        const size_t whole = WholeScsBytes(gathered_.data(), gathered_.size());
        return gathered_[whole - 1] == '\r' ? whole - 1 : whole;
    }

    void Flush(size_t bytes)
    {
        if (compound_ != 0)
            AddToCompound(bytes);
        else
            AddToResult(bytes);
        gathered_.erase(0, bytes);
    }

    void AddToCompound(size_t bytes)
    {
        if (CompoundTextAddTextExt(compound_, kStyleDefault, kBodyFont, gathered_.data(), static_cast<DWORD>(bytes),
                                   kLineEnd, kLineEndBytes, nullptr) == kStatusOk)
            result_ = CString("added to hData buffer");
    }

    // The length is kept to 16 bits, and what the wide limit does not hold is cut.
    void AddToResult(size_t bytes)
    {
        const size_t length = WholeScsBytes(gathered_.data(), bytes & std::numeric_limits<WORD>::max());
        result_ += WideFromScs(gathered_.data(), static_cast<WORD>(length), kWideFlushLimit);
    }

    COMPOUNDHANDLE compound_;
    CString result_;
    std::string gathered_;
    bool textSeen_ = false;
};

}  // namespace

CString ProcessItemContents(NOTEHANDLE note, const char* item, COMPOUNDHANDLE compound)
{
    TemporaryText exported;
    if (!exported.Created())
        return CString();
    DWORD bytes = 0;
    if (MailGetMessageBodyText(note, item, kLineEnd, kUnwrapped, true, exported.Name(), &bytes) != kStatusOk ||
        bytes == 0)
        return CString();
    const FileOwner file(exported.OpenForReading());
    if (file == nullptr) {
        exported.GiveUp();
        return CString();
    }
    TextFlusher flusher(compound);
    // A line break of the store is a line end in the export, so no line holds a NUL byte of its own.
    while (std::fgets(FileBuffer, kReadLimit, file.get()) != nullptr)
        flusher.AddLine(FileBuffer);
    return flusher.Finish();
}

CString GetItemContents(NOTEHANDLE note, const char* item)
{
    return ProcessItemContents(note, item, 0);
}

bool AddItemContents(NOTEHANDLE note, const char* item, COMPOUNDHANDLE compound)
{
    return !ProcessItemContents(note, item, compound).IsEmpty();
}

std::wstring FindAndGetItemContents(NOTEHANDLE note)
{
    if (!GetDataFieldsSearch(Buffer1))
        std::memcpy(Buffer1, kDefaultBodyItems, sizeof kDefaultBodyItems);
    char* rest = nullptr;
    for (const char* item = strtok_r(Buffer1, ",", &rest); item != nullptr; item = strtok_r(nullptr, ",", &rest)) {
        const WORD nameLength = static_cast<WORD>(std::strlen(item));
        if (VLTItemInfo(note, item, nameLength, nullptr, nullptr, nullptr, nullptr) == kStatusOk)
            return GetItemContents(note, item).GetWString();
    }
    return std::wstring();
}

SearchEngineResult IndexItemContents(NOTEHANDLE note, const char* item, [[maybe_unused]] bool reserved,
                                     SearchEngineEvent& event)
{
    CString text = ProcessItemContents(note, item, 0);
    if (item == nullptr && text.IsEmpty())
        text = FindAndGetItemContents(note);
    static_cast<void>(event.AddProperty(CString(kContentKey), text));
    return 0;
}
