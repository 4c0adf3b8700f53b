// tests/client/foundation/languages_test.cpp: the user's languages and their folders.
#include "client/foundation/languages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <optional>

#include "client/foundation/host.h"

using namespace pavex::cf;

namespace {

using Names = std::vector<std::string>;

// Sets the variables that name languages and puts them back.
class LanguageEnvironment {
public:
    explicit LanguageEnvironment(const std::map<std::string, std::string>& values)
    {
        for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
            const char* before = std::getenv(name);
            before_[name] = before ? std::optional<std::string>(before) : std::nullopt;
            if (values.contains(name))
                setenv(name, values.at(name).c_str(), 1);
            else
                unsetenv(name);
        }
    }
    ~LanguageEnvironment()
    {
        for (const auto& [name, value] : before_) {
            if (value)
                setenv(name.c_str(), value->c_str(), 1);
            else
                unsetenv(name.c_str());
        }
    }
    LanguageEnvironment(const LanguageEnvironment&) = delete;
    LanguageEnvironment& operator=(const LanguageEnvironment&) = delete;

private:
    std::map<std::string, std::optional<std::string>> before_;
};

Names LanguagesWith(const std::map<std::string, std::string>& values)
{
    const LanguageEnvironment environment(values);
    return LanguagesOfEnvironment();
}

}  // namespace

TEST(Languages, ALocaleNamesItsFoldersFromTheMostExactOn)
{
    EXPECT_EQ(FoldersOfLanguage("de"), (Names{"de"}));
    EXPECT_EQ(FoldersOfLanguage("de_AT.UTF-8@euro"), (Names{"de-AT", "de_AT", "de"}));
    EXPECT_EQ(FoldersOfLanguage("DE-at"), (Names{"de-AT", "de_AT", "de"}));
    EXPECT_EQ(FoldersOfLanguage("sr_Latn_RS"),
              (Names{"sr-Latn-RS", "sr_Latn_RS", "sr-RS", "sr_RS", "sr-Latn", "sr_Latn", "sr"}));
    EXPECT_EQ(FoldersOfLanguage("es-419"), (Names{"es-419", "es_419", "es"}));
}

TEST(Languages, SimplifiedAndTraditionalChineseAreKeptApart)
{
    const Names simplified = FoldersOfLanguage("zh_CN.UTF-8");
    for (const char* folder : {"zh-Hans", "zh_Hans", "zh_CN", "zh-CN", "zh"})
        EXPECT_NE(std::find(simplified.begin(), simplified.end(), folder), simplified.end()) << folder;
    for (const char* locale : {"zh", "zh-Hans", "zh_SG"}) {
        const Names folders = FoldersOfLanguage(locale);
        for (const char* folder : {"zh-Hans", "zh_CN", "zh"})
            EXPECT_NE(std::find(folders.begin(), folders.end(), folder), folders.end()) << locale << ' ' << folder;
    }
    for (const char* locale : {"zh_TW", "zh-Hant", "zh_HK.Big5"}) {
        for (const std::string& folder : FoldersOfLanguage(locale))
            EXPECT_TRUE(folder.find("Hans") == std::string::npos && folder.find("CN") == std::string::npos &&
                        folder != "zh")
                << locale << ' ' << folder;
    }
}

TEST(Languages, EveryLocaleOfAShippedLanguageFindsItsFolderFirst)
{
    const Names shipped = {"de", "en", "es", "fr", "ja", "zh-Hans"};
    const std::map<std::string, std::string> found = {{"de_DE.UTF-8", "de"},
                                                      {"de_AT@euro", "de"},
                                                      {"en_US.UTF-8", "en"},
                                                      {"es_AR", "es"},
                                                      {"es-419", "es"},
                                                      {"fr_BE.ISO8859-1", "fr"},
                                                      {"ja_JP.UTF-8", "ja"},
                                                      {"ja_JP.eucJP", "ja"},
                                                      {"zh_CN.GB18030", "zh-Hans"},
                                                      {"zh_SG.UTF-8", "zh-Hans"},
                                                      {"zh_Hans_CN", "zh-Hans"},
                                                      {"zh", "zh-Hans"},
                                                      {"zh_TW.UTF-8", ""},
                                                      {"zh_HK", ""},
                                                      {"pt_BR.UTF-8", ""},
                                                      {"jam", ""}};
    for (const auto& [locale, folder] : found) {
        const Names names = LanguagesWith({{"LANG", "it_IT.UTF-8"}, {"LC_ALL", locale}});
        ASSERT_EQ(names, Names{locale});
        const Names folders = FoldersOfLanguage(names.front());
        const auto first = std::find_first_of(folders.begin(), folders.end(), shipped.begin(), shipped.end());
        EXPECT_EQ(first == folders.end() ? "" : *first, folder) << locale;
    }
}

TEST(Languages, WhatIsNoLanguageHasNoFolder)
{
    for (const char* name : {"", "C", "C.UTF-8", "POSIX", "1", "../../etc", "d/e", ".UTF-8", "@euro", "a"})
        EXPECT_EQ(FoldersOfLanguage(name), Names{}) << name;
}

TEST(Languages, TheFirstLocaleVariableThatIsSetCounts)
{
    EXPECT_EQ(LanguagesWith({}), Names{});
    EXPECT_EQ(LanguagesWith({{"LANG", "fr_FR.UTF-8"}}), Names{"fr_FR.UTF-8"});
    EXPECT_EQ(LanguagesWith({{"LANG", "fr_FR"}, {"LC_MESSAGES", "ja_JP"}}), Names{"ja_JP"});
    EXPECT_EQ(LanguagesWith({{"LANG", "fr_FR"}, {"LC_MESSAGES", "ja_JP"}, {"LC_ALL", "de_DE"}}), Names{"de_DE"});
    EXPECT_EQ(LanguagesWith({{"LANG", "fr_FR"}, {"LC_ALL", ""}}), Names{"fr_FR"});
}

TEST(Languages, TheLanguageListComesFirst)
{
    EXPECT_EQ(LanguagesWith({{"LANGUAGE", "es:de_AT::fr"}, {"LANG", "en_GB"}}), (Names{"es", "de_AT", "fr", "en_GB"}));
    EXPECT_EQ(LanguagesWith({{"LANGUAGE", "es"}}), (Names{"es"}));
}

TEST(Languages, TheBareCLocaleAsksForUntranslatedTexts)
{
    EXPECT_EQ(LanguagesWith({{"LANGUAGE", "es"}, {"LANG", "de_DE"}, {"LC_ALL", "C"}}), Names{});
    EXPECT_EQ(LanguagesWith({{"LANGUAGE", "es"}, {"LANG", "POSIX"}}), Names{});
}

TEST(Languages, SettingNoneTurnsToTheEnvironmentOfThatMoment)
{
    pavex::SetUserLanguages({"ja", "fr"});
    EXPECT_EQ(CurrentLanguages().languages, (Names{"ja", "fr"}));
    const uint64_t before = LanguagesGeneration();
    const LanguageEnvironment environment(std::map<std::string, std::string>{{"LANG", "de_DE"}});
    EXPECT_EQ(CurrentLanguages().languages, (Names{"ja", "fr"}));
    pavex::SetUserLanguages({});
    EXPECT_EQ(CurrentLanguages().languages, (Names{"de_DE"}));
    EXPECT_NE(LanguagesGeneration(), before);
}
