// fuzz/html_fuzz.cpp: any bytes as an HTML body, with and without their charset known.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "client/import/charset_text.h"
#include "client/import/html_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::string text =
        pavex::TextFromHtml(pavex::CleanText(pavex::Utf8FromBytes(bytes, pavex::HtmlMetaCharset(bytes))));
    if (!pavex::IsUtf8(text))
        std::abort();
    return 0;
}
