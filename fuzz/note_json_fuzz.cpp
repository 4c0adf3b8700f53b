// fuzz/note_json_fuzz.cpp: JSON of any bytes as notes: refused with a reason, or a note that reads back as itself.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "client/app/json_input.h"
#include "client/app/note_json.h"

namespace {

using pavex::Note;

void ReadBack(const Note& note)
{
    const nlohmann::ordered_json written = pavex::JsonFromNote(note);
    Note again;
    std::string error;
    if (!pavex::NoteFromJson(nlohmann::ordered_json::parse(written.dump()), &again, &error))
        std::abort();
    if (pavex::JsonFromNote(again) != written)
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    const void* const start = bytes;
    std::istringstream input(std::string(static_cast<const char*>(start), size));
    pavex::ReadJsonValues(input, [](const nlohmann::ordered_json& value, size_t line, const std::string& error) {
        if (line == 0 || value.is_discarded() == error.empty())
            std::abort();
        if (value.is_discarded())
            return true;
        Note note;
        std::string wrong;
        if (pavex::NoteFromJson(value, &note, &wrong))
            ReadBack(note);
        else if (wrong.empty())
            std::abort();
        return true;
    });
    return 0;
}
