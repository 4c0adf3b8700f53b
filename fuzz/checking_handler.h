// fuzz/checking_handler.h: what must hold of every note that a reader makes of any bytes.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

#include "client/import/charset_text.h"
#include "client/import/source_reader.h"

namespace pavex {

// Aborts unless the note says what it is (the item named first is there besides Form) and all its texts are UTF-8.
inline void CheckNote(const Note& note, const char* item)
{
    if (note.Find("Form") == nullptr || note.Find(item) == nullptr)
        std::abort();
    for (const Item& each : note.items) {
        for (const std::string& value : TextValues(each).value_or(std::vector<std::string>())) {
            if (!IsUtf8(value))
                std::abort();
        }
    }
}

// Takes all entries and makes their notes.
class CheckingHandler : public EntryHandler {
public:
    // item: that each note must have.
    explicit CheckingHandler(const char* item) : item_(item) {}

    bool Found(SourceEntryFound entry) override
    {
        Note note;
        std::string reason;
        if (!entry.make(&note, &reason))
            std::abort();
        CheckNote(note, item_);
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
    const char* item_;
};

// A file in memory whose bytes are replaced by each input.
class MemoryFile {
public:
    MemoryFile() : descriptor_(::memfd_create("input", MFD_CLOEXEC)) {}
    ~MemoryFile() { ::close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    // Aborts when that fails: nothing would be tested.
    void Write(const uint8_t* data, size_t size) const
    {
        if (::ftruncate(descriptor_, 0) != 0 || ::pwrite(descriptor_, data, size, 0) != static_cast<ssize_t>(size))
            std::abort();
    }
    int Descriptor() const { return descriptor_; }
    std::string Path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
};

}  // namespace pavex
