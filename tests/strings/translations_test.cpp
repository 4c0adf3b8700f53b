// tests/strings/translations_test.cpp: the add-in's texts in every language that is shipped.
// The English table says which texts there are; a translation says the same in the same room.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "client/foundation/host.h"
#include "client/store/host.h"
#include "strings/cstring.h"
#include "strings/string_ids.h"
#include "strings/string_resources.h"
#include "tests/client/windows/text_rooms.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/translations.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kTable = "libtorvik";
using Texts = std::map<std::string, std::string>;

// What may take how much room where it is shown: columns, and bytes of UTF-8.
struct Room {
    const char* place;
    std::vector<int> texts;
    size_t columns;
    size_t bytes;
};
const Room kRooms[] = {
    {"menu", {kStringMenuEntry}, kMenuColumns, 63},
    {"lead-in of a status line", {kStringLeadDatabase, kStringLeadActivity, kStringLeadOverall}, kLeadColumns, 255},
    {"state of a status line",
     {kStringStateOff, kStringStateNothing, kStringStateIndexedUpTo, kStringProgressOverall, kStringProgressDatabase,
      kStringStateIndexingNow, kStringStateNotSaved, kStringActivityHistory, kStringStateInterrupted},
     kStateColumns,
     255},
    {"instructions, on three lines", {kStringInstructionsOff, kStringInstructionsOn}, kInstructionColumns, 1023},
    {"message box",
     {kStringNoDatabaseChosen, kStringRemoteNotAllowed, kStringCannotOpenDatabase, kStringNoSuchDatabase,
      kStringListFull},
     kBoxColumns,
     kBoxTextBytes},
    {"question", {kStringReindexQuestion}, kQuestionColumns, kBoxTextBytes},
    {"notice", {kStringEnableNotice}, kNoticeColumns, kBoxTextBytes},
    {"caption", {kStringEnableCaption, kStringReindexCaption, kStringListFullCaption}, kCaptionColumns, kBoxTextBytes},
    {"category",
     {kStringCategoryHoliday, kStringCategoryVacation, kStringCategoryProjects, kStringCategoryClients,
      kStringCategoryPhoneCalls, kStringCategoryTravel},
     22,
     63},
};

struct SameAsEnglish {
    const char* language;
    int text;
    const char* reason;
};
constexpr SameAsEnglish kSameAsEnglish[] = {
    {"fr", kStringCategoryClients, "the same word in both languages"},
};

bool MayBeEnglish(const std::string& language, const std::string& number)
{
    for (const SameAsEnglish& row : kSameAsEnglish) {
        if (row.language == language && std::to_string(row.text) == number)
            return true;
    }
    return false;
}

// The conversions in their order; a '%' that begins none stands as it is.
std::string Conversions(const std::string& text)
{
    std::string found;
    const std::regex conversion("%([^%]|%|$)");
    for (std::sregex_iterator match(text.begin(), text.end(), conversion), end; match != end; ++match)
        found += match->str();
    return found;
}

std::string Loaded(int number)
{
    return CString(StringResourceMap::GetInstance()->Load(static_cast<unsigned int>(number))).toString();
}

class Translation : public testing::TestWithParam<std::string> {
protected:
    const Texts english_ = ReadTable("en", kTable);
    const Texts texts_ = ReadTable(GetParam(), kTable);
};
INSTANTIATE_TEST_SUITE_P(Shipped, Translation, testing::ValuesIn(kTranslations),
                         [](const auto& language) { return language.param.substr(0, language.param.find('-')); });

TEST_P(Translation, HasTheTextsOfTheEnglishTableAndNoOther)
{
    std::vector<std::string> english, translated;
    for (const auto& [number, text] : english_)
        english.push_back(number);
    for (const auto& [number, text] : texts_)
        translated.push_back(number);
    EXPECT_GT(english.size(), 50U);
    EXPECT_EQ(translated, english);
}

TEST_P(Translation, IsReadWithoutAFaultAndLoadsAsItIsWritten)
{
    pavex::SetUserLanguages({GetParam()});
    pavex::SetAddInBundle(TORVIK_SOURCE_DIR "/resources");
    pavex::SetStringsDiagnostics([](const std::string& file, int line, const std::string& reason) {
        ADD_FAILURE() << file << ":" << line << ": " << reason;
    });
    for (const auto& [number, text] : texts_)
        EXPECT_EQ(Loaded(std::stoi(number)), text);
    pavex::SetAddInBundle("");
}

TEST_P(Translation, TakesTheArgumentsOfTheEnglishTextInTheSameOrder)
{
    for (const auto& [number, text] : texts_)
        EXPECT_EQ(Conversions(text), Conversions(english_.at(number))) << number << " " << text;
}

TEST_P(Translation, LeavesNothingEmptyAndNothingInEnglish)
{
    for (const auto& [number, text] : texts_) {
        EXPECT_NE(text, "") << number;
        EXPECT_EQ(text == english_.at(number), MayBeEnglish(GetParam(), number)) << number << " " << text;
    }
}

TEST_P(Translation, FitsWhereItIsShown)
{
    for (const Room& room : kRooms) {
        for (const int number : room.texts) {
            const std::string& text = texts_.at(std::to_string(number));
            EXPECT_LE(Columns(text), room.columns) << room.place << " " << number << ": " << text;
            EXPECT_LE(text.size(), room.bytes) << room.place << " " << number << ": " << text;
        }
    }
}

TEST_P(Translation, MarksAsManyLettersAsEnglishDoes)
{
    for (const auto& [number, text] : texts_)
        EXPECT_EQ(AccessKeys(text).size(), AccessKeys(english_.at(number)).size()) << number << " " << text;
}

TEST_P(Translation, KeepsThePunctuationOfItsLanguage)
{
    for (const auto& [number, text] : texts_) {
        EXPECT_EQ(BadPunctuation(GetParam(), text), "") << number << " " << text;
        EXPECT_GT(Columns(text), 0U);
    }
}

TEST_P(Translation, LeavesRoomBetweenALeadInAndWhatFollows)
{
    const bool fullWidth = GetParam() == "ja" || GetParam() == "zh-Hans";
    for (const int id : {kStringLeadDatabase, kStringLeadActivity, kStringLeadOverall})
        EXPECT_TRUE(texts_.at(std::to_string(id)).ends_with(fullWidth ? "：" : ": ")) << texts_.at(std::to_string(id));
    EXPECT_EQ(texts_.at(std::to_string(kStringStateIndexedUpTo)).back(), ' ');
}

TEST_P(Translation, NamesTheThingsAlikeInEveryText)
{
    EXPECT_EQ(texts_.at("115"), texts_.at("260"));
    EXPECT_EQ(texts_.at("101"), texts_.at("115") + (GetParam() == "de" ? "\u00A0…" : "…"));
    EXPECT_EQ(texts_.at("109"), texts_.at("110"));
    const Texts dialog = ReadTable(GetParam(), "dialogs");
    for (const char* button : {"2070.1", "2070.3397"})  // the hint names them
        EXPECT_NE(texts_.at("157").find(dialog.at(button)), std::string::npos) << button;
}

TEST(Translations, HaveRoomForEveryTextThatIsNotForTheLog)
{
    std::set<int> roomed;
    for (const Room& room : kRooms)
        roomed.insert(room.texts.begin(), room.texts.end());
    const std::string ids = ReadWholeFile(TORVIK_SOURCE_DIR "/strings/string_ids.h");
    const std::regex rule("int kString\\w+ = (\\d+);");
    std::set<int> shown;
    for (std::sregex_iterator match(ids.begin(), ids.end(), rule), end; match != end; ++match)
        shown.insert(std::stoi((*match)[1]));
    EXPECT_GT(shown.size(), 25U);
    EXPECT_EQ(roomed, shown);
}

TEST(Translations, AreEachLaidIntoTheBundleByTheBuild)
{
    std::set<std::string> languages;
    for (const fs::directory_entry& folder : fs::directory_iterator(TORVIK_SOURCE_DIR "/resources")) {
        if (!folder.is_directory())
            continue;
        languages.insert(folder.path().stem().string());
        for (const fs::directory_entry& table : fs::directory_iterator(folder)) {
            const fs::path laid =
                fs::path(TORVIK_BINARY_DIR "/share/pavex/torvik") / folder.path().filename() / table.path().filename();
            EXPECT_EQ(ReadWholeFile(laid.string()), ReadWholeFile(table.path().string()));
        }
    }
    std::set<std::string> expected(kTranslations.begin(), kTranslations.end());
    expected.insert("en");
    EXPECT_EQ(languages, expected);
}

TEST(Translations, AreChosenByTheUsersLocale)
{
    const std::map<std::string, std::string> tables = {{"de_AT.UTF-8", "de"},      {"de_CH", "de"},
                                                       {"fr_CA.UTF-8@euro", "fr"}, {"fr", "fr"},
                                                       {"es_MX.UTF-8", "es"},      {"es-419", "es"},
                                                       {"ja_JP.UTF-8", "ja"},      {"ja_JP.eucJP", "ja"},
                                                       {"zh_CN", "zh-Hans"},       {"zh_SG.UTF-8", "zh-Hans"},
                                                       {"zh-Hans", "zh-Hans"},     {"zh", "zh-Hans"},
                                                       {"zh_TW.UTF-8", "en"},      {"pt_BR.UTF-8", "en"},
                                                       {"en_GB.UTF-8", "en"},      {"C", "en"}};
    for (const auto& [locale, table] : tables) {
        pavex::SetUserLanguages({locale});
        pavex::SetAddInBundle(TORVIK_SOURCE_DIR "/resources");
        EXPECT_EQ(Loaded(kStringStateOff), ReadTable(table, kTable).at("106")) << locale;
    }
    pavex::SetAddInBundle("");
}

TEST(Translations, ThatLackATextShowItInEnglish)
{
    const TemporaryDirectory bundle;
    for (const char* language : {"en", "de"})
        fs::create_directory(bundle.Path() / (std::string(language) + ".lproj"));
    WriteWholeFile(bundle / "en.lproj/libtorvik.strings", ReadWholeFile(TableFile("en", kTable)));
    WriteWholeFile(bundle / "de.lproj/libtorvik.strings", "\"106\" = \"Indizierung ist ausgeschaltet\";\n");
    pavex::SetUserLanguages({"de_DE.UTF-8"});
    pavex::SetAddInBundle(bundle.Path());
    EXPECT_EQ(Loaded(kStringStateOff), "Indizierung ist ausgeschaltet");
    EXPECT_EQ(Loaded(kStringStateNothing), "Not indexed yet");
    pavex::SetAddInBundle("");
}

}  // namespace
