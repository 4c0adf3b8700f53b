// fuzz/vcard_fuzz.cpp: any bytes as a file of contacts, from the lines to the items.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <sys/mman.h>

#include "client/import/charset_text.h"
#include "client/import/vcard_note.h"
#include "client/import/vcard_stream.h"
#include "client/store/descriptor.h"

namespace {

using namespace pavex;

void CheckText(const std::string& text)
{
    if (!IsUtf8(text))
        std::abort();
}

void CheckNote(const Note& note)
{
    for (const Item& item : note.items) {
        for (const std::string& value : TextValues(item).value_or(std::vector<std::string>()))
            CheckText(value);
    }
    if (note.Find("FullName") == nullptr || note.Find("Form") == nullptr)
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const Descriptor file(::memfd_create("cards", MFD_CLOEXEC));
    if (!WriteAll(file.Get(), {reinterpret_cast<const char*>(data), size}))
        std::abort();
    CardStream cards(file.Get(), 0, size);
    for (CardFound card; cards.Next(&card);) {
        if (card.end > size || card.start > card.end)
            std::abort();
        if (!card.problem.empty())
            continue;
        CheckText(IdentityOfCard(card.properties));
        (void)RevisionOfCard(card.properties);
        Note note;
        MakeContactNote(card.properties, &note);
        CheckNote(note);
    }
    return 0;
}
