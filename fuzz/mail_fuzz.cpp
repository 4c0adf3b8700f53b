// fuzz/mail_fuzz.cpp: any bytes as a message, through the parser and all that reads its text.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <gmime/gmime.h>

#include "client/import/charset_text.h"
#include "client/import/message_note.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace pavex;
    StartMimeLibrary();
    const ObjectOwner<GMimeStream> stream(g_mime_stream_mem_new_with_buffer(reinterpret_cast<const char*>(data), size));
    Note note;
    std::string reason;
    if (!ParseMessageNote(stream.get(), MessageCircumstances{}, &note, &reason))
        return 0;
    for (const Item& item : note.items) {
        const std::optional<std::vector<std::string>> values = TextValues(item);
        for (const std::string& value : values.value_or(std::vector<std::string>())) {
            if (!IsUtf8(value))
                std::abort();
        }
    }
    return note.Find("Form") != nullptr ? 0 : 1;
}
