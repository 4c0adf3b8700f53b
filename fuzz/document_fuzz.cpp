// fuzz/document_fuzz.cpp: any bytes as a text, as Markdown and as a bookmark file, down to the notes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

#include "client/import/bookmark_reader.h"
#include "client/import/charset_text.h"
#include "client/import/document_reader.h"

namespace pavex {
namespace {

class Takes : public EntryHandler {
public:
    bool Found(SourceEntryFound entry) override
    {
        Note note;
        std::string reason;
        if (!entry.make(&note, &reason) || note.Find("Form") == nullptr || TitleOf(note).empty())
            std::abort();
        for (const Item& item : note.items) {
            for (const std::string& value : TextValues(item).value_or(std::vector<std::string>())) {
                if (!IsUtf8(value))
                    std::abort();
            }
        }
        return true;
    }
    bool Rejected(const std::string&, const std::string&) override { return true; }
    bool RejectedVersion(EntryKind, const std::string&, const std::string&, const std::string&) override
    {
        return true;
    }
    void Unreadable(const std::string&, const std::string&) override {}
    bool Progress(uint64_t) override { return true; }

private:
    static std::string TitleOf(const Note& note)
    {
        const Item* const title = note.Find("Title");
        const auto values = title != nullptr ? TextValues(*title) : std::nullopt;
        return values && !values->empty() ? values->front() : std::string();
    }
};

// A file in memory, and a name for it that says Markdown.
class MemoryFile {
public:
    MemoryFile()
        : descriptor_(::memfd_create("document", 0)), markdown_("/tmp/document_fuzz-" + Number(::getpid()) + ".md")
    {
        if (descriptor_ < 0 || ::symlink(Path().c_str(), markdown_.c_str()) != 0)
            std::abort();
    }
    ~MemoryFile() { ::unlink(markdown_.c_str()); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    void Write(const uint8_t* data, size_t size) const
    {
        if (::ftruncate(descriptor_, 0) != 0 || ::pwrite(descriptor_, data, size, 0) != static_cast<ssize_t>(size))
            std::abort();
    }
    std::string Path() const { return "/proc/self/fd/" + Number(descriptor_); }
    const std::string& MarkdownPath() const { return markdown_; }

private:
    static std::string Number(int number) { return std::to_string(number); }

    int descriptor_;
    std::string markdown_;
};

}  // namespace
}  // namespace pavex

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace pavex;
    static const MemoryFile memory;
    memory.Write(data, size);
    Takes takes;
    SourceFile file;
    file.size = size;
    file.path = memory.Path();
    (void)ReadBookmarks(file, ImportOptions{}, takes);
    (void)ReadDocument(file, ImportOptions{}, takes);
    file.path = memory.MarkdownPath();
    (void)ReadDocument(file, ImportOptions{}, takes);
    return 0;
}
