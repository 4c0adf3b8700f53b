// fuzz/ini_fuzz.cpp: an ini file of any bytes takes a change, and keeps the variables it had.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "client/store/ini_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    const void* const start = bytes;
    const std::string_view text(static_cast<const char*>(start), size);
    pavex::IniText ini(text);
    pavex::VariableMap expected = ini.Variables("Pavex");
    const std::string value(text.substr(0, 100));
    if (!ini.Set("Pavex", "FuzzedValue", value))
        std::abort();
    expected.insert_or_assign("FuzzedValue", value);
    if (pavex::IniText(ini.Text()).Variables("Pavex") != expected)
        std::abort();
    return 0;
}
