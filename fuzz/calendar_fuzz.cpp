// fuzz/calendar_fuzz.cpp: any bytes as a calendar file, down to the notes of its entries.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

#include "client/import/calendar_reader.h"
#include "client/import/charset_text.h"

namespace pavex {
namespace {

class Takes : public EntryHandler {
public:
    bool Found(SourceEntryFound entry) override
    {
        Note note;
        std::string reason;
        if (!entry.make(&note, &reason) || note.Find("Form") == nullptr)
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
};

}  // namespace
}  // namespace pavex

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace pavex;
    static const int memory = ::memfd_create("calendar", 0);
    if (::ftruncate(memory, 0) != 0 || ::pwrite(memory, data, size, 0) != static_cast<ssize_t>(size))
        std::abort();
    SourceFile file;
    file.path = "/proc/self/fd/" + std::to_string(memory);
    file.size = size;
    Takes takes;
    (void)ReadCalendar(file, ImportOptions{}, takes);
    return 0;
}
