// fuzz/richtext_fuzz.cpp: rich text of any bytes is read without a step outside of them.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "client/store/charset.h"
#include "client/store/richtext.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    const void* const start = bytes;
    const std::string_view records(static_cast<const char*>(start), size);
    bool damaged = false;
    size_t shown = 0;
    for (const pavex::RichTextPiece& piece : pavex::ReadRichText(records, &damaged))
        shown += piece.text.size();
    std::string streamed;
    const bool whole = pavex::VisitPlainText(records, [&streamed](std::string_view piece, bool) {
        streamed += piece;
        return true;
    });
    // Both readers see the same text and the same damage.
    if (whole == damaged || streamed.size() > size || (streamed.empty() != (shown == 0)))
        std::abort();
    // A cut leaves what stands before it as it is.
    const size_t cut = pavex::ScsPrefix(streamed, streamed.size() / 2);
    if (cut > streamed.size() / 2)
        std::abort();
    (void)pavex::Utf16FromScs(streamed.substr(cut));
    return 0;
}
