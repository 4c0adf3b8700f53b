// client/foundation/languages.h: which languages the user reads, and which folders hold them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pavex::cf {

// The folder names (without ".lproj") to look in for a language, best first: "de_AT.UTF-8" gives de-AT,
// de_AT, de.  Nothing for "C", "POSIX" and what is no language.
std::vector<std::string> FoldersOfLanguage(std::string_view language);

// The user's languages by the environment, best first; none means English.
std::vector<std::string> LanguagesOfEnvironment();

// The languages in force.
struct UserLanguages {
    std::vector<std::string> languages;
    uint64_t generation;  // changes with every SetUserLanguages
};
UserLanguages CurrentLanguages();
// Cheap: for asking whether what was read by the languages still holds.
uint64_t LanguagesGeneration();

}  // namespace pavex::cf
