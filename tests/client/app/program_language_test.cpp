// tests/client/app/program_language_test.cpp: the built program in the languages it speaks.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

using testing::AllOf;
using testing::HasSubstr;

struct Spoken {
    const char* locale;
    const char* title;
    const char* checkBox;
    const char* overall;  // the status line while indexing is off
};
constexpr Spoken kEnglish = {"C", "Desktop Search Settings\n", "encrypted: Index encrypted notes",
                             " Overall: Indexing is switched off\n"};
constexpr Spoken kGerman = {"de_AT.UTF-8", "Einstellungen der Desktopsuche\n",
                            "encrypted: Verschlüsselte Notizen indizieren", " Gesamt: Indizierung ist ausgeschaltet\n"};
constexpr Spoken kJapanese = {"ja_JP.UTF-8", "デスクトップ検索の設定\n", "encrypted: 暗号化されたノートを対象にする",
                              " 全体：インデックス作成はオフです\n"};
constexpr Spoken kLanguages[] = {
    kEnglish,
    kGerman,
    kJapanese,
    {"es_MX.UTF-8", "Ajustes de búsqueda de escritorio\n", "encrypted: Indexar las notas cifradas",
     " En conjunto: la indexación está desactivada\n"},
    {"fr_CA.UTF-8", "Réglages de la recherche de bureau\n", "encrypted: Indexer les notes chiffrées",
     " État global\u00A0: indexation désactivée\n"},
    {"zh_CN.UTF-8", "桌面搜索设置\n", "encrypted: 索引加密的笔记", " 总体：索引功能已关闭\n"},
    {"zh_TW.UTF-8", kEnglish.title, kEnglish.checkBox, kEnglish.overall},
    {"pt_BR.UTF-8", kEnglish.title, kEnglish.checkBox, kEnglish.overall},
};

class ProgramLanguage : public testing::Test {
protected:
    void ExpectSpoken(const std::string& locale, const Spoken& spoken)
    {
        const ProgramResult shown = home_.RunIn(locale, {"settings", "--show"});
        EXPECT_EQ(shown.exit, 0) << shown.err;
        EXPECT_THAT(shown.out,
                    AllOf(testing::StartsWith(spoken.title), HasSubstr(spoken.checkBox), HasSubstr(spoken.overall)))
            << locale;
    }
    void Choose(const std::string& language)
    {
        std::filesystem::create_directories(home_.Path("home"));
        WriteWholeFile(home_.Path("home/pavex.ini"), "[Pavex]\nLanguage=" + language + "\n");
    }

    ProgramHome home_;
};

TEST_F(ProgramLanguage, FollowsTheLocale)
{
    for (const Spoken& spoken : kLanguages)
        ExpectSpoken(spoken.locale, spoken);
}

TEST_F(ProgramLanguage, IsTheChosenOneWhateverTheLocale)
{
    Choose("ja");
    for (const char* locale : {"de_AT.UTF-8", "en_US.UTF-8", "C"})
        ExpectSpoken(locale, kJapanese);
    Choose("en");
    ExpectSpoken("de_AT.UTF-8", kEnglish);
}

TEST_F(ProgramLanguage, IsEnglishWhenTheChosenOneIsUnknownAndTheLocalesWhenNoneIsChosen)
{
    Choose("xx");
    ExpectSpoken("de_AT.UTF-8", kEnglish);
    Choose("");
    ExpectSpoken("de_AT.UTF-8", kGerman);
}

}  // namespace
}  // namespace pavex
