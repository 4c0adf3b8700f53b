// client/store/names.cpp: names of people: the user's, and the short form of hierarchical ones.
#include <strings.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "client/store/charset.h"
#include "client/store/host.h"
#include "platform/store.h"

namespace {

using namespace pavex;

// The keys of a hierarchical name's components, from the person to the country.
constexpr std::string_view kNameKeys[] = {
    "CN=", "OU=", "OU1=", "OU2=", "OU3=", "OU4=", "O=", "C=", "L=", "ST=", "G=", "I=", "S=", "Q=", "P=", "A="};

size_t KeyBytes(std::string_view component)
{
    for (const std::string_view key : kNameKeys) {
        if (component.size() >= key.size() && strncasecmp(component.data(), key.data(), key.size()) == 0)
            return key.size();
    }
    return 0;
}

std::string Abbreviate(std::string_view name)
{
    if (KeyBytes(name) == 0)
        return std::string(name);  // an Internet address, or short already
    std::string result;
    while (true) {
        const size_t slash = std::min(name.find('/'), name.size());
        const std::string_view component = name.substr(0, slash);
        result += component.substr(KeyBytes(component));
        if (slash == name.size())
            return result;
        result += '/';
        name.remove_prefix(slash + 1);
    }
}

WORD HandOut(std::string_view text, char* out, WORD size)
{
    const size_t length = ScsPrefix(text, size - 1u);
    std::memcpy(out, text.data(), length);
    out[length] = 0;
    return static_cast<WORD>(length);
}

}  // namespace

STATUS DNAbbreviate(DWORD, void*, const char* name, char* out, WORD size, WORD* length)
{
    if (length != nullptr)
        *length = 0;
    if (name == nullptr || out == nullptr || size == 0)
        return kStatusBadText;
    const WORD written = HandOut(Abbreviate(name), out, size);
    if (length != nullptr)
        *length = written;
    return kStatusOk;
}

STATUS SECKFMUserInfo(WORD function, char* name, void*)
{
    const std::string user = function == 1 ? ScsFromUtf8(UserName()) : std::string();
    if (user.empty() || name == nullptr)
        return kStatusNotFound;
    HandOut(user, name, 256);
    return kStatusOk;
}
