// fuzz/strings_table_fuzz.cpp: strings tables from hostile bytes.
// Whatever the bytes: no crash, a fault has a line and a reason, and a table without a fault, written out
// with every unit escaped, reads back as itself.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "client/foundation/strings_table.h"

namespace {

std::string Quoted(std::u16string_view text)
{
    std::string out = "\"";
    for (const char16_t unit : text) {
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\U%04x", static_cast<unsigned>(unit));
        out += escape;
    }
    return out + '"';
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace pavex::cf;
    const StringsTable table = ParseStrings(std::string_view(reinterpret_cast<const char*>(data), size));
    if (table.fault && (table.fault->line < 1 || table.fault->reason.empty()))
        std::abort();
    std::string written;
    for (const auto& [key, text] : table.entries)
        written += Quoted(key) + " = " + Quoted(text) + ";\n";
    const StringsTable again = ParseStrings(written);
    if (again.fault || again.entries != table.entries)
        std::abort();
    return 0;
}
