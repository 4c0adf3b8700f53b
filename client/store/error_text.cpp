// client/store/error_text.cpp: AddInFormatErrorText.
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include "client/store/charset.h"
#include "client/store/timedate.h"
#include "platform/store.h"

namespace {

using namespace pavex;

constexpr size_t kBufferBytes = 1024;

template <typename Value> void AppendPrinted(std::string* text, const std::string& conversion, Value value)
{
    char printed[kBufferBytes];
    if (std::snprintf(printed, sizeof printed, conversion.c_str(), value) >= 0)
        *text += printed;
}

// The conversion at format[position], a '%': flags, width and precision as printf.  Up to its letter.
std::string ReadConversion(const std::string& format, size_t position)
{
    const size_t letter = format.find_first_not_of("-+ #0123456789.", position + 1);
    return letter == std::string::npos ? std::string() : format.substr(position, letter + 1 - position);
}

}  // namespace

WORD AddInFormatErrorText(char* buffer, const char* format, ...)
{
    const std::string source = format;
    std::string text;
    va_list arguments;
    va_start(arguments, format);
    size_t position = 0;
    while (position < source.size()) {
        const size_t percent = source.find('%', position);
        text += source.substr(position, percent - position);
        if (percent == std::string::npos)
            break;
        const std::string conversion = ReadConversion(source, percent);
        position = percent + conversion.size();
        const char letter = conversion.empty() ? '\0' : conversion.back();
        if (letter == 'H') {
            TIMEDATE id;
            std::memcpy(&id, va_arg(arguments, const void*), sizeof id);
            text += HexFromId(id);
        } else if (letter == 's') {
            AppendPrinted(&text, conversion, va_arg(arguments, const char*));
        } else if (letter == 'd') {
            AppendPrinted(&text, conversion, va_arg(arguments, int));
        } else if (letter == 'u' || letter == 'X') {
            AppendPrinted(&text, conversion, va_arg(arguments, unsigned int));
        } else if (letter == '%') {
            text += '%';
        } else {
            // What it would take is not known, nor where the next argument begins.
            text += source.substr(percent);
            break;
        }
    }
    va_end(arguments);
    const size_t length = ScsPrefix(text, kBufferBytes - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = 0;
    return static_cast<WORD>(length);
}
