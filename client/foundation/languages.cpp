// client/foundation/languages.cpp: which languages the user reads, and which folders hold them.
#include "client/foundation/languages.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <optional>

#include "client/foundation/host.h"

namespace pavex {

namespace cf {

namespace {

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::string Cased(std::string_view text, bool upper, bool titled = false)
{
    std::string out(text);
    for (size_t i = 0; i < out.size(); ++i) {
        const bool wantsUpper = titled ? i == 0 : upper;
        if (IsLetter(out[i]))
            out[i] = static_cast<char>(wantsUpper ? out[i] & ~0x20 : out[i] | 0x20);
    }
    return out;
}

struct LocaleName {
    std::string language, script, region;
};

// language[_Script][_REGION][.charset][@modifier], '_' or '-' between.
std::optional<LocaleName> ParseLocale(std::string_view name)
{
    name = name.substr(0, name.find_first_of(".@"));
    LocaleName locale;
    for (bool first = true; !name.empty(); first = false) {
        const size_t end = std::min(name.find_first_of("_-"), name.size());
        const std::string_view part = name.substr(0, end);
        name.remove_prefix(std::min(end + 1, name.size()));
        const bool letters = std::all_of(part.begin(), part.end(), IsLetter);
        const bool digits = std::all_of(part.begin(), part.end(), [](char c) { return c >= '0' && c <= '9'; });
        if (first && (!letters || part.size() < 2 || part.size() > 8))
            return std::nullopt;
        if (first)
            locale.language = Cased(part, false);
        else if (letters && part.size() == 4)
            locale.script = Cased(part, false, true);
        else if ((letters && part.size() == 2) || (digits && part.size() == 3))
            locale.region = Cased(part, true);
    }
    if (locale.language.empty() || locale.language == "posix")
        return std::nullopt;
    return locale;
}

// Chinese is two written languages; who reads one is not served by the other.
std::string ChineseScript(const LocaleName& locale)
{
    if (!locale.script.empty())
        return locale.script;
    return locale.region == "TW" || locale.region == "HK" || locale.region == "MO" ? "Hant" : "Hans";
}

const char* Variable(const char* name)
{
    const char* value = std::getenv(name);
    return value && *value ? value : nullptr;
}

}  // namespace

std::vector<std::string> FoldersOfLanguage(std::string_view language)
{
    const std::optional<LocaleName> locale = ParseLocale(language);
    if (!locale)
        return {};
    const bool chinese = locale->language == "zh";
    const std::string script = chinese ? ChineseScript(*locale) : locale->script;
    const std::string& region = locale->region;
    std::vector<std::string> folders;
    const auto add = [&folders, &locale](const std::string& separator, const std::string& first,
                                         const std::string& second = "") {
        std::string name = locale->language;
        for (const std::string& part : {first, second}) {
            if (!part.empty())
                name += separator + part;
        }
        if (std::find(folders.begin(), folders.end(), name) == folders.end())
            folders.push_back(name);
    };
    for (const char* separator : {"-", "_"})
        add(separator, script, region);
    if (!region.empty() && (locale->script.empty() || !chinese)) {
        for (const char* separator : {"-", "_"})
            add(separator, region);
    }
    for (const char* separator : {"-", "_"})
        add(separator, script);
    if (chinese) {
        for (const char* separator : {"-", "_"})
            add(separator, script == "Hant" ? "TW" : "CN");
    }
    if (!chinese || script == "Hans")
        add("", "");
    return folders;
}

std::vector<std::string> LanguagesOfEnvironment()
{
    std::string_view locale;
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const char* value = Variable(name)) {
            locale = value;
            break;
        }
    }
    // Who asks for the bare C locale, a script mostly, asks for untranslated texts.
    if (locale == "C" || locale == "POSIX")
        return {};
    std::vector<std::string> languages;
    if (const char* list = Variable("LANGUAGE")) {
        std::string_view rest = list;
        while (!rest.empty()) {
            const size_t end = std::min(rest.find(':'), rest.size());
            if (end > 0)
                languages.emplace_back(rest.substr(0, end));
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    }
    if (!locale.empty())
        languages.emplace_back(locale);
    return languages;
}

namespace {

std::mutex languagesMutex;
std::optional<std::vector<std::string>> currentLanguages;  // guarded by languagesMutex; written in this file
std::atomic<uint64_t> languagesGeneration{1};

}  // namespace

UserLanguages CurrentLanguages()
{
    const std::lock_guard lock(languagesMutex);
    if (!currentLanguages)
        currentLanguages = LanguagesOfEnvironment();
    return {*currentLanguages, languagesGeneration};
}

uint64_t LanguagesGeneration()
{
    return languagesGeneration;
}

}  // namespace cf

void SetUserLanguages(const std::vector<std::string>& languages)
{
    const std::lock_guard lock(cf::languagesMutex);
    cf::currentLanguages = languages.empty() ? cf::LanguagesOfEnvironment() : languages;
    ++cf::languagesGeneration;
}

}  // namespace pavex
