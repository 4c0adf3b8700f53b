// fuzz/vcard_fuzz.cpp: any bytes as a file of contacts, from the lines to the items.
#include "client/import/vcard_note.h"
#include "client/import/vcard_stream.h"
#include "fuzz/checking_handler.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace pavex;
    static const MemoryFile memory;
    memory.Write(data, size);
    CardStream cards(memory.Descriptor(), 0, size);
    for (CardFound card; cards.Next(&card);) {
        if (card.end > size || card.start > card.end)
            std::abort();
        if (!card.problem.empty())
            continue;
        if (!IsUtf8(IdentityOfCard(card.properties)))
            std::abort();
        (void)RevisionOfCard(card.properties);
        Note note;
        MakeContactNote(card.properties, &note);
        CheckNote(note, "FullName");
    }
    return 0;
}
